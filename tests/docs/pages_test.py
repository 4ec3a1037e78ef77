#!/usr/bin/env python3
"""Compares the pages with the sources: pages_test.py [TEST]. TABLE_MEMORY in the environment is that program."""
import hashlib
import os
import pathlib
import re
import subprocess
import unittest

import built

PROJECT = pathlib.Path(__file__).resolve().parent.parent.parent
DOCS = PROJECT / "docs"
PAGES = [PROJECT / name for name in ["README.md", "CONTRIBUTING.md", "CHANGELOG.md"]] + sorted(DOCS.glob("*.md"))
SOURCES = (".h", ".cpp")


def rows(page, heading):
    """The cells of each line of the table whose first head cell is given."""
    lines = page.read_text().splitlines()
    start = next(number for number, line in enumerate(lines) if line.startswith(f"| {heading} |")) + 2
    for line in lines[start:]:
        if not line.startswith("|"):
            return
        yield [cell.strip() for cell in re.split(r"(?<!\\)\|", line)[1:-1]]


def code(cell):
    return re.findall(r"`([^`]+)`", cell)


class Architecture(unittest.TestCase):
    page = DOCS / "architecture.md"

    def test_every_include_is_allowed_by_the_table_of_folders(self):
        allowed_by_folder = {code(folder)[0]: code(allowed) for folder, _, allowed in rows(self.page, "folder")}
        checked = 0
        for path in sorted(path for top in {folder.split("/")[0] for folder in allowed_by_folder}
                           for path in (PROJECT / top).rglob("*") if path.suffix in SOURCES):
            name = path.relative_to(PROJECT).as_posix()
            folder = max((folder for folder in allowed_by_folder if name.startswith(folder)), key=len, default=None)
            self.assertIsNotNone(folder, f"{name}: give its folder a row in architecture.md")
            # What callers include is found below include/, everything else from the root.
            prefixes = tuple(prefix.removeprefix("include/") for prefix in allowed_by_folder[folder])
            for include in re.findall(r'^#include "([^"]+)"', path.read_text(), re.MULTILINE):
                self.assertTrue(include.startswith(prefixes),
                                f"{name} includes {include}; architecture.md lets {folder} include {prefixes}")
                checked += 1
        self.assertGreater(checked, 200)

    def test_pictures_are_drawn_from_their_sources(self):
        sources = sorted((DOCS / "images").glob("*.dot"))
        self.assertGreater(len(sources), 3)
        for source in sources:
            checksum = hashlib.sha256(source.read_bytes()).hexdigest()
            self.assertIn(f"<!-- {checksum} -->", source.with_suffix(".svg").read_text(), f"{source.name}: run scripts/pictures.sh")
            self.assertIn(f"images/{source.stem}.svg", self.page.read_text(), "docs/architecture.md: show this picture, or delete it")

    def test_units_are_those_of_the_source_folder(self):
        named = [unit for units, _ in rows(self.page, "unit") for unit in code(units)]
        there = {path.stem for path in (PROJECT / "src").rglob("*") if path.suffix in SOURCES}
        self.assertEqual(sorted(named), sorted(there), "docs/architecture.md, table of units: list the units on the right")

    def test_memory_of_the_table_is_as_measured(self):
        program = os.environ["TABLE_MEMORY"]
        if absent := built.missing(program):
            self.fail(absent)
        written = [f"{entries} {table}" for entries, table, _ in rows(self.page, "entries")]
        measured = subprocess.run([program], text=True, stdout=subprocess.PIPE, check=True).stdout
        self.assertEqual(written, measured.splitlines(), "write the measured figures, and adapt the arithmetic above them")


class BinaryContract(unittest.TestCase):
    page = DOCS / "binary-contract.md"

    def test_slots_are_those_of_the_header(self):
        header = (PROJECT / "include/ascii_util/ascii_util_interface.h").read_text()
        declared = re.findall(r"/// Slot (\d+)\..*?virtual [^(]*?(\w+)\(", header, re.DOTALL)
        self.assertEqual(len(declared), 12)
        slots = {code(name)[0]: text for name, text in rows(self.page, "class")}
        written = re.findall(r"(\d+) `(\w+)`", slots["AsciiUtilInterface"])
        self.assertEqual(written, declared, "docs/binary-contract.md, slots: list those of the header, on the right")

    def test_exported_functions_are_those_of_the_version_script(self):
        script = (PROJECT / "src/exports.map").read_text()
        exported = re.findall(r"^\s+(?:_ZN8NS_ASCII\d+([A-Za-z0-9]+?)(?:E\*|B5cxx11Ei)|(_make\w+));", script, re.MULTILINE)
        written = [name.removeprefix("NS_ASCII::") for cell, _ in rows(self.page, "symbol") for name in code(cell)]
        self.assertEqual(sorted(written), sorted(mangled or plain for mangled, plain in exported),
                         "docs/binary-contract.md, exported functions: list those of src/exports.map, on the right")

    def test_messages_are_those_of_the_source(self):
        header = (PROJECT / "src/log/messages.h").read_text()
        names, declared = [], []
        for name, rest in re.findall(r"\bconstexpr Message (\w+)(.*?);$", header, re.MULTILINE | re.DOTALL):
            fields = re.fullmatch(r'\{\s*"(\w+)",\s*(\d+),\s*(\d),\s*((?:"(?:[^"\\]|\\.)*"\s*)+)\}', rest)
            self.assertIsNotNone(fields, f'src/log/messages.h, {name}: write {{"TAG", NUMBER, LEVEL, "TEXT"}}')
            text = "".join(re.findall(r'"((?:[^"\\]|\\.)*)"', fields[4]))
            declared.append((*fields.groups()[:3], re.sub(r"\\(.)", r"\1", text)))
            names.append(name)
        self.assertGreater(len(declared), 9)
        numbered = {}
        for name, (tag, number, *_) in zip(names, declared):
            other = numbered.setdefault((tag, number), name)
            self.assertEqual(other, name, f"src/log/messages.h: {name}: give another number, {other} has {tag} {number}")
        written = [(code(tag)[0], number, level, code(text)[0]) for tag, number, level, text, _ in rows(self.page, "tag")]
        for row in (row for row in declared if row not in written):
            self.fail("docs/binary-contract.md, Messages: write | `{}` | {} | {} | `{}` | WHEN |".format(*row))
        self.assertEqual(written, declared, "list the messages of src/log/messages.h in docs/binary-contract.md, in the same order")
        # No other source of the bundle contains a tag or a message text.
        for path in (PROJECT / "src").rglob("*.cpp"):
            self.assertNotRegex(path.read_text(), r'Log(?:Message|Formatted)\("', path.name)


class Everywhere(unittest.TestCase):
    def test_links_lead_somewhere(self):
        checked = 0
        for page in PAGES:
            for target in re.findall(r"\]\(([^)\s]+)\)", page.read_text()):
                if "://" in target:
                    continue
                name, _, anchor = target.partition("#")
                to = (page.parent / name).resolve() if name else page
                self.assertTrue(to.exists(), f"{page.name}: correct the link {target}: there is no such file")
                if anchor:
                    headings = re.findall(r"^#+ (.*)$", to.read_text(), re.MULTILINE)
                    anchors = {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}
                    self.assertIn(anchor, anchors, f"{page.name}: correct the link {target}: the page has no such heading")
                checked += 1
        self.assertGreater(checked, 10)

    def test_sources_start_with_what_they_do_and_which_threads_may_call(self):
        def says(text, is_header):
            head = "\n".join(re.findall(r"^ *///.*", text, re.MULTILINE)) if is_header else text.split("\n\n")[0]
            return (is_header or head.startswith("// ")) and re.search(r"\bthreads?\b|plain value", head, re.IGNORECASE)

        sources = [path for top in ("src", "host", "tools", "examples") for path in (PROJECT / top).rglob("*")
                   if path.suffix in SOURCES]
        self.assertGreater(len(sources), 150)
        wrong = [path.relative_to(PROJECT).as_posix() for path in sources if not says(path.read_text(), path.suffix == ".h")]
        self.assertEqual(wrong, [], "write at the top what the file does, who owns what and which threads may call")

    def test_every_source_is_in_the_list_of_its_folder(self):
        sources = [path for top in ("src", "host", "tools", "examples", "tests", "fuzz", "bench")
                   for pattern in ("*.cpp", "*_test.py") for path in (PROJECT / top).rglob(pattern)]
        self.assertGreater(len(sources), 250)
        wrong = []
        for path in sorted(sources):
            folder = next(folder for folder in path.parents if (folder / "CMakeLists.txt").exists())
            lists = [*folder.rglob("CMakeLists.txt"), *folder.rglob("*.cmake")]
            text = "\n".join(re.sub(r"#.*", "", each.read_text()) for each in lists)
            name = path.relative_to(folder).as_posix()
            names = {name, name.removesuffix(".cpp")}
            if path.is_relative_to(PROJECT / "tests") or path.is_relative_to(PROJECT / "fuzz"):  # lists of units
                names |= {path.stem, path.stem.removesuffix("_test")}
            if not any(re.search(rf"(?<!\w){re.escape(each)}(?![\w.])", text) for each in names):
                wrong.append(f"{(folder / 'CMakeLists.txt').relative_to(PROJECT)}: add {name}")
        self.assertFalse(wrong, "write these; a source that is in no list is never built or run:\n" + "\n".join(wrong))

    def test_sources_of_tests_start_with_what_must_hold(self):
        heads = {".cpp": r"// .*\n", ".h": r"(?s).*^ */// ", ".py": r'(#!.*\n)?"""'}
        sources = [path for top in ("tests", "fuzz", "bench") for path in (PROJECT / top).rglob("*") if path.suffix in heads]
        self.assertGreater(len(sources), 200)
        wrong = [path.relative_to(PROJECT).as_posix() for path in sources
                 if not re.match(heads[path.suffix], path.read_text(), re.MULTILINE)]
        self.assertEqual(wrong, [], "write at the top what the file tests and what must hold")

    def test_scripts_that_pages_name_are_there_and_say_what_they_do(self):
        named = {name for page in PAGES for name in re.findall(r"\bscripts/\w+\.sh\b", page.read_text())}
        there = {f"scripts/{path.name}" for path in (PROJECT / "scripts").glob("*.sh")}
        self.assertEqual(named - there, set(), "the pages name scripts that do not exist; correct the names")
        for script in sorted(there | {".ci/run"}):
            done = subprocess.run([f"../{script}", "--help"], cwd=DOCS, text=True, stdout=subprocess.PIPE, check=False)
            self.assertEqual(done.returncode, 0, f"{script}: --help must exit with 0")
            self.assertIn(script, done.stdout, f"{script}: --help must show how it is called")
            self.assertGreater(len(done.stdout.splitlines()), 2, f"{script}: --help must say what it does")

    def test_options_and_variables_that_pages_name_exist(self):
        recipes = [PROJECT / "CMakeLists.txt", *(PROJECT / "cmake").glob("*.cmake"), *(PROJECT / "scripts").iterdir(),
                   *(path for path in (PROJECT / "tests").rglob("*") if path.suffix in (".txt", ".cmake", ".sh", ".cpp", ".py"))]
        known = set()
        for path in recipes:
            known |= set(re.findall(r"\bASCII_UTIL_\w+", path.read_text(errors="replace")))
        for page in PAGES:
            for name in re.findall(r"\bASCII_UTIL_[A-Z_]*[A-Z]\b", page.read_text()):
                self.assertIn(name, known, f"{page.name}: correct the name, or define the option {name}")

    def test_changelog_has_the_version_and_lines_that_fit_a_terminal(self):
        version = re.search(r"VERSION (\S+)", (PROJECT / "CMakeLists.txt").read_text().split("project(")[1]).group(1)
        changelog = (PROJECT / "CHANGELOG.md").read_text()
        self.assertRegex(changelog, rf"(?m)^## {re.escape(version)} - \d\d\d\d-\d\d-\d\d$", "CHANGELOG.md: write this heading")
        self.assertEqual([line for line in changelog.splitlines() if len(line) > 78], [], "CHANGELOG.md: break these lines")
        for manual in (DOCS / "man").glob("*.1"):
            self.assertIn(f'"ii_ascii_util {version}"', manual.read_text().splitlines()[0], f"{manual.name}, line 1: write the version")


if __name__ == "__main__":
    unittest.main()
