"""The HTML page in a headless Chromium: what it shows, how it answers keys, how it looks on small windows and on paper.

    page_test.py ALMCFG [UNITTEST-OPTION...]

ALMCFG is the program. Exits with 77 where there is no browser (Debian package chromium). The figures of the large page are
printed, not judged.
"""

import functools
import os
import re
import subprocess
import sys
import tempfile
import time
import unittest

from browser import Browser, find_chromium

ALMCFG = ""
MANY = 100_000

# Keys in force, with findings on lines 3 (a warning), 5 (an error, no key), 6 (a note) and 8 (an error, no key).
SMALL = """NodeA\tPort1\tLinkDown\t7\t2
NodeB\tPort1\tLinkDown\t72\t3
NodeC\tPort2\tFanStopped\t07\t4
NodeD\tPort2\tFanStopped\t8\t5
NodeE Port2
NodeF/\tPort3\tOverheated\t9\t6
NodeG\tPort3\tOverheated\t10\t7
NodeH Port3
"""

WINDOW = """(() => { const box = document.querySelector("main").getBoundingClientRect();
  const top = document.querySelector("thead").getBoundingClientRect().bottom;
  const rows = [...document.querySelectorAll("tbody tr")].map((row) => [row.getBoundingClientRect(), row]);
  return { top, bottom: box.bottom,
           first: rows[0][0].top, last: rows.at(-1)[0].bottom,
           firstIndex: Number(rows[0][1].ariaRowIndex ?? rows[0][1].getAttribute("aria-rowindex")),
           heights: [...new Set(rows.map(([place]) => Math.round(place.height * 10)))],
           gaps: rows.slice(1).filter(([place], at) => Math.abs(place.top - rows[at][0].bottom) > 0.1).length,
           seen: rows.filter(([place]) => place.top >= top - 1 && place.bottom <= box.bottom + 1)
                     .map(([, row]) => row.querySelector("td").textContent) }; })()"""


@functools.cache
def large():
    lines = []
    for i in range(MANY):
        if i % 97 == 96:
            lines.append(f"Node{i} Port{i % 64}\n")
        else:
            number = "07" if i % 50 == 49 else i % 100
            lines.append(f"Node{i}\tPort{i % 64}\tLinkDown\t{number}\t{i % 5}\n")
    return "".join(lines)


class Page(unittest.TestCase):
    browser = None   # One for all tests.
    folder = None

    def setUp(self):
        self.browser.resize(1280, 800)

    def make(self, *contents, names=None, change=None, calls=None):
        """Makes the page of files with these contents and returns its path."""
        files = []
        for number, content in enumerate(contents):
            file = os.path.join(self.folder, names[number] if names else f"file{number + 1}.csv")
            os.makedirs(os.path.dirname(file), exist_ok=True)
            with open(file, "w", encoding="utf-8", newline="") as out:
                out.write(content)
            files.append(file)
        options = []
        if calls:
            options = ["--calls", os.path.join(self.folder, "calls")]
            with open(options[1], "w", encoding="utf-8", newline="") as out:
                out.write(calls)
        made = subprocess.run([ALMCFG, "show", "--format", "html", *options, *files], stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, encoding="utf-8").stdout
        if change:
            self.assertIn(change[0], made)
            made = made.replace(*change)
        page = os.path.join(self.folder, "page.html")
        with open(page, "w", encoding="utf-8") as out:
            out.write(made)
        return page

    def open(self, *contents, **options):
        self.browser.open(self.make(*contents, **options))
        self.assertEqual(self.browser.events("Runtime.exceptionThrown"), [])
        self.assertEqual(self.browser.events("Log.entryAdded"), [])

    def first_cells(self):
        return self.browser.run('[...document.querySelectorAll("tbody tr td:first-child")].map((cell) => cell.textContent)')

    def count(self):
        return self.browser.run('document.querySelector("#count").textContent')

    def selected(self):
        return self.browser.run('document.querySelector("tr[aria-current]")?.querySelector("td").textContent ?? ""')

    def has_focus(self, selector):
        return self.browser.run(f'document.activeElement === document.querySelector("{selector}")')

    def search(self, text):
        self.browser.press("/")
        self.browser.run('document.activeElement.value = ""')
        self.browser.type(text)

    def detail(self):
        return self.browser.run('document.querySelector("#detail").innerText')


class Shown(Page):
    def test_rows_show_the_table_and_lines_without_a_key(self):
        self.open(SMALL)
        self.assertEqual(self.first_cells(), ["NodeA", "NodeB", "NodeC", "NodeD", "NodeE Port2", "NodeF", "NodeG",
                                              "NodeH Port3"])
        row = self.browser.run('[...document.querySelectorAll("tbody tr")[1].cells].map((cell) => cell.textContent)')
        self.assertEqual(row, ["NodeB", "Port1", "LinkDown", "72", "3", "2", ""])
        classes = self.browser.run('[...document.querySelectorAll("tbody tr")].map((row) => row.className)')
        self.assertEqual(classes, ["", "", "warning", "", "error", "note", "", "error"])

    def test_files_are_distinguished_by_short_names(self):
        self.open("A\tB\tC\t7\t1\n", "B\tB\tC\t7\t1\n", names=["north/a.csv", "south/a.csv"])
        sources = self.browser.run('[...document.querySelectorAll("td.source")].map((cell) => cell.textContent)')
        self.assertEqual(sources, ["north/a.csv:1", "south/a.csv:1"])

    def test_hostile_text_stays_text(self):
        hostile = "<img src=x onerror=hacked=1>"
        self.open(f"{hostile}\t<!--\t</script><script>hacked=1</script>\t7\t\"'&\n{hostile}\n",
                  names=[f"a{hostile}.csv"])
        self.assertEqual(self.first_cells(), [hostile, hostile])
        self.assertIn(hostile, self.browser.run("document.querySelector('header').textContent"))
        self.browser.press("n")
        self.assertIn(hostile, self.detail())
        self.assertEqual(self.browser.run("[typeof hacked, document.images.length, document.scripts.length]"),
                         ["undefined", 0, 1])

    def test_nothing_is_requested_from_elsewhere(self):
        page = self.make(SMALL)
        self.browser.open(page)
        asked = [event["request"]["url"] for event in self.browser.events("Network.requestWillBeSent")]
        self.assertEqual(asked, ["file://" + page])

    def test_a_page_without_rows_says_so(self):
        self.open(SMALL)
        self.browser.press("/")
        self.browser.type("nowhere")
        self.assertEqual(self.count(), "0 of 8 rows")
        self.assertFalse(self.browser.run('document.querySelector("#none").hidden'))
        for key in ("Enter", "ArrowUp", "ArrowDown", "PageDown"):
            self.browser.press(key)
        self.assertEqual(self.browser.events("Runtime.exceptionThrown"), [])


class Search(Page):
    def test_a_word_matches_within_one_cell(self):
        self.open(SMALL)
        self.search("72")
        self.assertEqual(self.first_cells(), ["NodeB"])
        self.assertEqual(self.count(), "1 of 8 rows")

    def test_several_words_may_be_in_several_cells(self):
        self.open(SMALL)
        self.search("PORT3  overh")
        self.assertEqual(self.first_cells(), ["NodeF", "NodeG"])

    def test_findings_are_searched_too(self):
        self.open(SMALL)
        self.search("number-never-matches")
        self.assertEqual(self.first_cells(), ["NodeC"])

    def test_a_search_without_matches_says_so(self):
        self.open(SMALL)
        self.search("nowhere")
        self.assertEqual(self.first_cells(), [])
        self.assertFalse(self.browser.run('document.querySelector("#none").hidden'))

    def test_the_level_filters_by_severity(self):
        self.open(SMALL)
        rows = {"1": ["NodeC", "NodeE Port2", "NodeF", "NodeH Port3"], "2": ["NodeC", "NodeE Port2", "NodeH Port3"],
                "3": ["NodeE Port2", "NodeH Port3"]}
        for level, expected in rows.items():
            self.browser.run(f"""(() => {{ const level = document.querySelector("#level"); level.value = "{level}";
                                 level.dispatchEvent(new Event("input")); }})()""")
            self.assertEqual(self.first_cells(), expected)


class Calls(Page):
    CALLS = "NodeA\tPort1\tLinkDown\t7\t1234\nNodeB\tPort1\tLinkDown\t72\n"

    def choose(self, value):
        self.browser.run(f"""(() => {{ const calls = document.querySelector("#calls"); calls.value = "{value}";
                             calls.dispatchEvent(new Event("input")); }})()""")

    def test_a_column_has_the_number_of_calls(self):
        self.open(SMALL, calls=self.CALLS)
        texts = '[...document.querySelectorAll("%s")].map((cell) => cell.textContent)'
        self.assertEqual(self.browser.run(texts % "td.calls"), ["1,234", "1", "0", "0", "0", "0"])
        self.assertEqual(self.browser.run(texts % "th")[4:7], ["Value", "Calls", "Line"])
        sides = self.browser.run("""["th", "tr:first-child td", "tr:nth-child(5) td"].map((cells) =>
            document.querySelector(cells + ".source")?.getBoundingClientRect().right)""")
        self.assertEqual(len(set(sides)), 1, "the columns of head, entries and lines without one are aligned")

    def test_rows_are_filtered_by_their_calls(self):
        self.open(SMALL, calls=self.CALLS)
        self.choose("asked")
        self.assertEqual(self.first_cells(), ["NodeA", "NodeB"])
        self.choose("never")
        self.assertEqual(self.first_cells(), ["NodeC", "NodeD", "NodeF", "NodeG"])
        self.browser.press("Escape")
        self.assertEqual(self.count(), "8 of 8 rows")

    def test_a_page_without_calls_has_neither(self):
        self.open(SMALL)
        self.assertTrue(self.browser.run('document.querySelector("#calls").hidden'))
        self.assertEqual(self.browser.run('document.querySelectorAll(".calls").length'), 0)


class Keys(Page):
    def test_findings_are_reached_from_the_start_and_around_the_ends(self):
        self.open(SMALL)
        reached = []
        for key in "nnnnnpp":
            self.browser.press(key)
            reached.append(self.selected())
        self.assertEqual(reached, ["NodeC", "NodeE Port2", "NodeF", "NodeH Port3", "NodeC", "NodeH Port3", "NodeF"])

    def test_keys_with_control_are_the_browsers(self):
        self.open(SMALL)
        self.browser.press("n", control=True)
        self.assertEqual(self.selected(), "")

    def test_previous_starts_at_the_end(self):
        self.open(SMALL)
        self.browser.press("p")
        self.assertEqual(self.selected(), "NodeH Port3")

    def test_escape_clears_the_search_and_then_leaves_it(self):
        self.open(SMALL)
        self.search("node")
        self.assertTrue(self.has_focus("#search"))
        self.browser.press("Escape")
        self.assertEqual(self.browser.run('document.querySelector("#search").value'), "")
        self.assertEqual(self.count(), "8 of 8 rows")
        self.assertTrue(self.has_focus("#search"))
        self.browser.press("Escape")
        self.assertTrue(self.has_focus("#rows"))
        self.browser.press("n")
        self.assertEqual(self.selected(), "NodeC")
        self.assertEqual(self.browser.run('document.querySelector("#search").value'), "")

    def test_escape_outside_the_search_shows_all_rows(self):
        self.open(SMALL)
        self.search("nodea")
        self.browser.run('document.activeElement.blur()')
        self.browser.press("Escape")
        self.assertEqual(self.count(), "8 of 8 rows")

    def test_the_search_field_reaches_findings_and_rows(self):
        self.open(SMALL)
        self.search("port")
        reached = []
        for key, shift in (("Enter", False), ("Enter", False), ("Enter", False), ("Enter", True), ("ArrowDown", False),
                           ("ArrowDown", False), ("ArrowUp", False)):
            self.browser.press(key, shift)
            reached.append(self.selected())
        self.assertEqual(reached, ["NodeC", "NodeE Port2", "NodeF", "NodeE Port2", "NodeF", "NodeG", "NodeF"])
        self.assertTrue(self.has_focus("#search"))

    def test_letters_in_the_search_field_are_text(self):
        self.open(SMALL)
        self.search("np/")
        self.assertEqual(self.browser.run('document.querySelector("#search").value'), "np/")
        self.assertEqual(self.selected(), "")

    def test_home_and_end_reach_the_first_and_the_last_row(self):
        self.open("".join(f"Node{i}\tB\tC\t7\t1\n" for i in range(1000)))
        self.browser.press("End")
        self.browser.settle()
        self.assertEqual(self.browser.run(WINDOW)["seen"][-1], "Node999")
        self.browser.press("Home")
        self.browser.settle()
        self.assertEqual(self.browser.run(WINDOW)["seen"][0], "Node0")

    def test_tab_reaches_the_controls_and_the_rows(self):
        self.open(SMALL)
        reached = []
        for _ in range(5):
            self.browser.press("Tab")
            reached.append(self.browser.run("document.activeElement.id"))
        self.assertEqual(reached, ["search", "level", "previous", "next", "rows"])

    def test_a_click_selects_a_row_and_shows_it_whole(self):
        self.open(SMALL)
        self.browser.click("tbody tr:nth-child(3)")
        self.assertEqual(self.selected(), "NodeC")
        for text in ("file1.csv:3", "Key 2 Port2", "Number 07", "number-never-matches", "write 7"):
            self.assertIn(text, self.detail())
        self.browser.press("Escape")
        self.assertEqual(self.detail(), "")

    def test_a_selected_row_that_no_longer_matches_is_deselected(self):
        self.open(SMALL)
        self.browser.press("n")
        self.search("nodea")
        self.assertEqual(self.detail(), "")


class Large(Page):
    def timed(self, act):
        """Milliseconds that the act takes, by the clock and of the page's processor time."""
        def processor():
            return next(metric["value"] for metric in self.browser.call("Performance.getMetrics")["metrics"]
                        if metric["name"] == "TaskDuration")
        self.browser.call("Performance.enable", timeDomain="threadTicks")
        start, before = time.monotonic(), processor()
        act()
        return 1000 * (time.monotonic() - start), 1000 * (processor() - before)

    def test_only_the_rows_in_view_are_drawn(self):
        page = self.make(large())
        opening = self.timed(lambda: self.browser.open(page))
        self.assertEqual(self.count(), f"{MANY:,} of {MANY:,} rows")
        self.assertLess(self.browser.run('document.querySelectorAll("*").length'), 1000)
        strokes = []
        self.browser.press("/")
        for key in ["n", "o", "d", "e", "9", " ", "p", "o", "r", "t", "7", "Escape"]:
            strokes.append(self.timed(lambda: self.browser.press(key)))
            if key == "7":
                found = self.first_cells()
        self.assertTrue(found)
        self.assertTrue(all("9" in cell for cell in found), found)
        self.assertEqual(self.count(), f"{MANY:,} of {MANY:,} rows")
        print(f"{MANY:,} rows: opened and drawn in {opening[0]:.0f} ms ({opening[1]:.0f} ms of processor time); from a "
              f"keystroke to the drawn result {max(strokes)[0]:.0f} ms at most ({max(cpu for _, cpu in strokes):.0f} ms)")

    def test_every_row_is_as_high_as_the_next_and_the_view_is_always_full(self):
        self.open(large())
        for place in (0, 0.0001, 0.3, 0.7777, 1):
            self.browser.run(f'(() => {{ const rows = document.querySelector("main"); '
                             f'rows.scrollTop = {place} * (rows.scrollHeight - rows.clientHeight); }})()')
            self.browser.settle()
            window = self.browser.run(WINDOW)
            self.assertEqual(len(window["heights"]), 1)
            self.assertEqual(window["gaps"], 0)
            self.assertLessEqual(window["first"], window["top"] + 1)
            self.assertGreaterEqual(window["last"], window["bottom"] - 1)
        self.assertEqual(window["seen"][-1], f"Node{MANY - 1}")

    def test_more_rows_than_a_browser_lays_out_are_all_reached(self):
        self.open("".join(f"Node{i}\tB\tC\t7\t1\n" for i in range(20_000)), change=("kTallest = 15e6", "kTallest = 5e4"))
        self.assertLess(self.browser.run('document.querySelector("main").scrollHeight'), 51_000)
        self.assertEqual(self.browser.run(WINDOW)["seen"][0], "Node0")
        for place in (3, 10, 31, 1000, 40_000):
            self.browser.run(f'document.querySelector("main").scrollTop = {place}')
            self.browser.settle()
            window = self.browser.run(WINDOW)
            self.assertEqual(window["gaps"], 0)
            self.assertLessEqual(window["first"], window["top"] + 1)
            self.assertGreaterEqual(window["last"], window["bottom"] - 1)
        self.browser.press("End")
        self.browser.settle()
        self.assertEqual(self.browser.run(WINDOW)["seen"][-1], "Node19999")
        self.browser.press("p")
        self.browser.press("ArrowUp")
        self.assertEqual(self.selected(), "Node19999")
        for expected in ("Node19998", "Node19997"):
            self.browser.press("ArrowUp")
            self.browser.settle()
            self.assertIn(expected, self.browser.run(WINDOW)["seen"])

    def test_a_row_far_away_is_scrolled_to_when_it_is_selected(self):
        self.open(large())
        self.browser.press("p")
        self.browser.settle()
        far = self.selected()
        self.assertTrue(far.startswith("Node99"), far)
        self.assertIn(far, self.browser.run(WINDOW)["seen"])


class Looks(Page):
    def test_the_column_heads_stay_while_rows_scroll(self):
        self.open(large())
        self.browser.press("PageDown")
        self.browser.settle()
        self.assertGreater(self.browser.run('document.querySelector("main").scrollTop'), 100)
        self.assertTrue(self.browser.run('document.querySelector("thead").getBoundingClientRect().top === '
                                         'document.querySelector("main").getBoundingClientRect().top'))
        self.assertEqual(self.browser.run('document.querySelector("th").innerText'), "Key 1")

    def test_a_wide_row_is_one_line_high(self):
        self.open(f"{'A' * 300}\tB\tC\t07\t1\n", "A\tB\tC\t7\t1\n", names=["x" * 200 + ".csv", "y.csv"])
        heights = self.browser.run('[...document.querySelectorAll("tr")].map((row) => row.getBoundingClientRect().height)')
        self.assertLess(max(heights), 40)
        source = self.browser.run("""(() => { const cell = document.querySelector("td.source"), range = new Range();
          range.selectNodeContents(cell.lastChild); return range.getBoundingClientRect().right
                                                          - cell.getBoundingClientRect().right; })()""")
        self.assertLess(source, 0)   # The line number is not cut with the name.

    def test_narrow_windows_have_cards_and_nothing_scrolls_sideways(self):
        self.open(SMALL + f"{'A' * 300}\t{'B' * 300}\t{'C' * 300}\t07\t{'1' * 50}\n", "A\tB\tC\t7\t1\n",
                  names=["x" * 200 + ".csv", "y.csv"])
        for width in (420, 320, 721, 1000):
            self.browser.resize(width, 800)
            self.browser.settle()
            self.browser.press("n")
            wide = self.browser.run("""["html", "body", "main", "#detail", "header"].filter((name) => {
              const element = document.querySelector(name); return element.scrollWidth > element.clientWidth; })""")
            self.assertEqual(wide, [], width)
            lines = self.browser.run('new Set([...document.querySelector("tbody tr").cells]'
                                     '.map((cell) => cell.getBoundingClientRect().top)).size')
            self.assertEqual(lines, 3 if width <= 720 else 1, width)

    def test_the_row_at_the_top_stays_when_the_layout_changes(self):
        self.open("".join(f"Node{i}\tB\tC\t7\t1\n" for i in range(1000)))
        self.browser.run('document.querySelector("main").scrollTop = 9000')
        self.browser.settle()
        top = int(self.browser.run(WINDOW)["seen"][0][4:])
        self.browser.resize(420, 800)
        self.browser.settle()
        self.browser.settle()
        self.assertAlmostEqual(int(self.browser.run(WINDOW)["seen"][0][4:]), top, delta=3)

    def test_colours_have_contrast_in_light_and_dark(self):
        self.open(SMALL)
        grounds = []
        for dark in (False, True):
            self.browser.dark(dark)
            colour = {name: self.browser.run(f'getComputedStyle(document.body).getPropertyValue("--{name}")').strip()
                      for name in ("ground", "text", "soft", "head", "error", "error-ground", "warning", "warning-ground",
                                   "note", "note-ground")}
            grounds.append(self.browser.run("getComputedStyle(document.body).backgroundColor"))
            for ground in ("ground", "head", "error-ground", "warning-ground", "note-ground"):
                texts = ["text", "soft"] + [ground.removesuffix("-ground")] * ground.endswith("-ground")
                for text in texts:
                    self.assertGreaterEqual(contrast(colour[text], colour[ground]), 4.5, (dark, text, ground))
        self.browser.dark(False)
        self.assertNotEqual(*grounds)

    def test_paper_has_all_rows_and_no_controls(self):
        self.open("".join(f"Node{i}\tB\tC\t7\t1\n" for i in range(6000)))
        self.browser.call("Emulation.setEmulatedMedia", media="print")
        self.browser.run('dispatchEvent(new Event("beforeprint"))')
        self.browser.settle()
        self.assertEqual(len(self.first_cells()), 5000)
        self.assertEqual(self.browser.run('document.querySelector("#rest").innerText'),
                         "The first 5,000 of 6,000 rows. Search to print others.")
        self.assertEqual(self.browser.run('getComputedStyle(document.querySelector("form")).display'), "none")
        self.browser.run('dispatchEvent(new Event("afterprint"))')
        self.browser.call("Emulation.setEmulatedMedia", media="")
        self.browser.settle()
        self.assertLess(len(self.first_cells()), 200)
        self.open(SMALL)
        self.assertTrue(self.browser.print().startswith(b"%PDF"))

    def test_paper_has_every_page_of_the_rows(self):
        self.open("".join(f"Node{i}\tB\tC\t7\t1\n" for i in range(300)))
        pages = len(re.findall(rb"/Type\s*/Page\b", self.browser.print()))
        self.assertGreater(pages, 4)


class Spoken(Page):
    """What a screen reader is given."""

    def nodes(self):
        kept = [node for node in self.browser.call("Accessibility.getFullAXTree")["nodes"] if not node["ignored"]]
        return [(node["role"]["value"], node.get("name", {}).get("value", "")) for node in kept]

    def test_the_table_has_its_roles_in_both_layouts(self):
        self.open(SMALL)
        for width in (1280, 420):
            self.browser.resize(width, 800)
            self.browser.settle()
            nodes = self.nodes()
            self.assertIn(("table", "Keys in force, and lines with findings"), nodes)
            heads = [name for role, name in nodes if role == "columnheader"]
            self.assertEqual(heads, ["Key 1", "Key 2", "Key 3", "Number", "Value", "Line", "Findings"])
            self.assertEqual(len([1 for role, _ in nodes if role == "row"]), 9)
            self.assertIn(("cell", "FanStopped"), nodes)

    def test_rows_have_their_number_among_all(self):
        self.open(large())
        self.browser.press("End")
        self.browser.settle()
        self.assertEqual(self.browser.run('document.querySelector("tbody").lastChild.getAttribute("aria-rowindex")'),
                         str(MANY + 1))
        self.assertEqual(self.browser.run('document.querySelector("table").getAttribute("aria-rowcount")'), str(MANY + 1))

    def test_controls_have_names(self):
        self.open(SMALL)
        nodes = self.nodes()
        for control in (("searchbox", "Search: each word in any cell"), ("combobox", "Rows to show"),
                        ("button", "Previous finding"), ("button", "Next finding"), ("main", "Keys and findings"),
                        ("heading", "Alarm configuration"), ("search", "")):
            self.assertIn(control, nodes)

    def test_the_selected_row_and_the_count_are_announced(self):
        self.open(SMALL)
        self.browser.press("n")
        self.assertEqual(self.browser.run('document.querySelector("#detail").getAttribute("aria-live")'), "polite")
        self.assertIn("NodeC", self.detail())
        self.assertIn(("status", ""), self.nodes())


def contrast(*colours):
    """The contrast ratio of two colours, #RRGGBB."""
    def luminance(colour):
        parts = [int(colour[at:at + 2], 16) / 255 for at in (1, 3, 5)]
        linear = [part / 12.92 if part <= 0.04045 else ((part + 0.055) / 1.055) ** 2.4 for part in parts]
        return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2]
    low, high = sorted(luminance(colour) for colour in colours)
    return (high + 0.05) / (low + 0.05)


if __name__ == "__main__":
    if len(sys.argv) < 2 or sys.argv[1].startswith("-"):
        sys.exit(__doc__)
    ALMCFG = os.path.abspath(sys.argv.pop(1))
    if find_chromium() is None:
        print("page_test.py: skipped, there is no chromium; scripts/setup.sh page installs it")
        sys.exit(77)
    with Browser() as Page.browser, tempfile.TemporaryDirectory(prefix="almcfg_page.") as Page.folder:
        unittest.main()
