"""Writes the benchmark report from the results that scripts/bench.sh collected.

usage: report.py RESULTS [DOCS]

RESULTS is a directory of Google Benchmark JSON files. With DOCS, writes benchmarks.md and the plots there; without,
prints the tables. Every figure is a median over the repetitions of all processes that measured it, every ratio one of two
such medians of the same processes.
"""

import collections
import json
import pathlib
import platform
import re
import statistics
import subprocess
import sys

UNIT_NS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}

# Operation/input, what it is compared with ("best" of the rivals, or one of them), and the most its ratio should be.
GOALS = [
    ("Trim/12 B, a blank at each end", "Abseil", 0.4),
    ("Trim/40 B, 2 blanks at each end", "Abseil", 0.8),
    ("Trim/4 KiB of blanks", "Abseil", 0.2),
    *[(f"{operation}/{size}{locale}", "Abseil", goal)
      for operation in ("StrToUpper", "ToUpper") for locale in ("", ", C.UTF-8")
      for size, goal in (("64 B", 0.5), ("4 KiB", 0.1))],
    ("Str2Num/5 digits", "strtol", 1.1),
    ("Num2Str/5 digits", "fmt", 1.0),
    ("GetTimeStamp/now", "strftime", 1.0),
    ("GetKeyValue/first of 12 pairs", "find(key=)", 0.6),
    ("GetKeyValue/last of 12 pairs", "find(key=)", 0.85),
    ("GetKeyValue/absent, its first letter frequent", "find(key=)", 0.85),
    ("GetKeyValue/absent, its first letter rare", "find(key=)", 0.85),
    ("GetKeyValue/last of 12 pairs", "Abseil", 0.2),
    ("SplitStr/8 pieces", "Abseil", 0.7),
    ("SplitStr/10000 pieces", "Abseil", 0.25),
    ("ParseListMap/6 entries", "Abseil", 0.7),
    ("ParseListMap/10000 entries", "Abseil", 0.8),
    *[(f"GetURLEncoding/{kind}, {size}", "best", 0.5)
      for kind in ("prose", "dense", "CRLF", "only LF") for size in ("64 B", "4 KiB", "1 MiB")],
    *[(f"GetURLDecoding/{kind}, {size}", "best", 0.5)
      for kind in ("prose", "prose with %20", "dense", "CRLF") for size in ("64 B", "4 KiB", "1 MiB")],
    ("utf8toiso8859/umlauts, 64 B", "iconv_open per call", 0.4),
    ("Lookup/10^3 records", "std::map", 0.4),
    ("Lookup/10^5 records", "std::map", 0.2),
    ("Lookup/10^6 records", "std::map", 0.2),
    ("Lookup/10^3 records", "Abseil", 0.8),
    ("Lookup/10^5 records", "Abseil", 0.8),
    ("Lookup/10^6 records", "Abseil", 0.7),
    ("GetAlmCfgValue/10^3 records", "Abseil", 0.9),
    *[(f"LoadConfig/{lines} lines, {side}", rival, goal)
      for lines in ("10^3", "10^5", "10^6") for side in ("1x1", "2x2")
      for rival, goal in (("std::map", 0.2), ("Abseil", 0.4))],
]

NOTES = {
    "GetURLEncoding": "The rivals write capital digits, `%20` for a space and a line feed as it is; that they agree "
                      "is checked after translating their spelling. For line feeds only, we write twice their bytes.",
    "GetURLDecoding": "Rivals that do not take a '+' for a space are left out where the input has one.",
    "Lookup": "One lookup of a random key, value copied out.",
    "Readers": "Time per lookup over all threads together. Stores that are not made for a writer beside readers "
               "stand behind a `shared_mutex`.",
    "LoadConfig": "The rivals read lines, split them with `boost::split` and fill the map named. Time per file.",
    "GetTimeStamp": "With the host's formatter. `strftime` makes the same calls of `time` and `gmtime_r`.",
    "utf8toiso8859": "The host's converter keeps a descriptor per thread.",
    "StrToUpper": "Obeys the locale in force; the rivals do not.",
}


def read(directory):
    """The medians of all times by (operation/input, contestant), those of counters, and the context that was first."""
    times = collections.defaultdict(lambda: collections.defaultdict(list))
    counters = collections.defaultdict(lambda: collections.defaultdict(lambda: collections.defaultdict(list)))
    contexts = []
    for file in sorted(pathlib.Path(directory).glob("*.json")):
        data = json.loads(file.read_text())
        contexts.append(data["context"])
        for run in data["benchmarks"]:
            if run.get("run_type") != "iteration":
                continue
            operation, input_name, contestant = run["name"].split("/")[:3]
            name = f"{operation}/{input_name}"
            # What runs on one thread is told by its own processor time, which others on the machine disturb least.
            clock = "real_time" if "_time" in run["name"] else "cpu_time"
            times[name][contestant].append(run[clock] * UNIT_NS[run["time_unit"]])
            for key in ("bytes_per_record", "reads_alone", "reads_during_load", "writes"):
                if key in run:
                    counters[name][contestant][key].append(run[key])
    medians = {name: {who: statistics.median(all_) for who, all_ in runs.items()} for name, runs in times.items()}
    counted = {name: {who: {key: statistics.median(all_) for key, all_ in keys.items()} for who, keys in runs.items()}
               for name, runs in counters.items()}
    return medians, counted, min(contexts, key=lambda context: context["date"], default={})


# Shown, but nobody would take it: the rules written down step by step.
LITERAL = "literal"


def rivals_of(entry):
    return {who: time for who, time in entry.items() if who not in ("ours", "floor", LITERAL)}


def ratio(entry, against):
    """Ours divided by `against`, or None when that was not measured."""
    rivals = rivals_of(entry)
    if "ours" not in entry or not rivals or (against != "best" and against not in rivals):
        return None
    return entry["ours"] / (min(rivals.values()) if against == "best" else rivals[against])


def spelled(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def table(header, rows):
    lines = ["| " + " | ".join(header) + " |", "|" + "---|" * len(header)]
    lines += ["| " + " | ".join(row) + " |" for row in rows]
    return "\n".join(lines)


def verdict(value, goal, at_least=False):
    reached = value >= goal if at_least else value <= goal
    return "reached" if reached else "**missed**"


def goal_rows(medians, counted):
    rows = []
    for name, against, goal in GOALS:
        value = ratio(medians.get(name, {}), against)
        if value is not None:
            operation, input_name = name.split("/")
            rows.append([operation, input_name, "best rival" if against == "best" else f"`{against}`",
                         f"<= {goal:g}", f"{value:.2f}", verdict(value, goal)])

    def add(operation, input_name, against, goal, value, at_least=False):
        sign = ">=" if at_least else "<="
        rows.append([operation, input_name, against, f"{sign} {goal:g}", f"{value:.2f}",
                     verdict(value, goal, at_least)])

    reload_ = counted.get("Reload/10^6 records", {})
    if "ours" in reload_:
        ours = reload_["ours"]
        others = [keys for who, keys in reload_.items() if who != "ours"]
        add("Lookup during a load", "10^6 records, reads", "without a load", 0.8,
            ours["reads_during_load"] / ours["reads_alone"], True)
        if others:
            add("Lookup during a load", "10^6 records, reads", "best rival", 2,
                ours["reads_during_load"] / max(keys["reads_during_load"] for keys in others), True)
            add("Lookup during a load", "10^6 records, writes", "best rival", 1,
                ours["writes"] / max(keys["writes"] for keys in others), True)
    one = medians.get("Readers/10^6 records, 1 threads", {}).get("ours")
    two = medians.get("Readers/10^6 records, 2 threads", {}).get("ours")
    if one and two:
        add("Lookup by 2 threads", "10^6 records", "1 thread", 1.8, one / two, True)
    for side, factor in (("1x1", 1), ("2x2", 4)):
        small = medians.get(f"LoadConfig/10^3 lines, {side}", {}).get("ours")
        large = medians.get(f"LoadConfig/10^6 lines, {side}", {}).get("ours")
        if small and large:
            add("LoadConfig, per record", f"10^6 lines, {side}", "10^3 lines", 2.5, large / small / 1000)
    memory = counted.get("Memory/10^6 records", {})
    if "ours" in memory and "std::map" in memory:
        add("Memory per record", "10^6 records", "`std::map`", 0.45,
            memory["ours"]["bytes_per_record"] / memory["std::map"]["bytes_per_record"])
    return rows


def operation_section(operation, entries):
    contestants = []
    for entry in entries.values():
        contestants += [who for who in entry if who not in contestants and who not in ("ours", "floor")]
    contestants.sort()
    with_floor = any("floor" in entry for entry in entries.values())
    header = ["input", "ours", *[f"`{who}`" for who in contestants], "to the best rival"]
    header += ["to the floor"] if with_floor else []
    rows = []
    for input_name, entry in entries.items():
        best = ratio(entry, "best")
        row = [input_name, spelled(entry["ours"])]
        row += [spelled(entry[who]) if who in entry else "" for who in contestants]
        row.append(f"{best:.2f}" if best is not None else "")
        if with_floor:
            row.append(f"{entry['ours'] / entry['floor']:.1f}" if "floor" in entry else "")
        rows.append(row)
    note = NOTES.get(operation)
    return f"### {operation}\n\n" + (note + "\n\n" if note else "") + table(header, rows) + "\n"


def counter_sections(counted):
    parts = []
    if reload_ := counted.get("Reload/10^6 records"):
        rows = [[f"`{who}`", *[f"{keys[key] / 1e6:.2f}" for key in ("reads_alone", "reads_during_load", "writes")]]
                for who, keys in reload_.items()]
        parts.append("### Lookup during a load\n\nMillions per second, one reader and one writer, 10^6 records; each "
                     "round of the writer changes every value.\n\n"
                     + table(["store", "reads alone", "reads during the load", "writes"], rows) + "\n")
    if memory := counted.get("Memory/10^6 records"):
        rows = [[f"`{who}`", f"{keys['bytes_per_record']:.0f}"] for who, keys in memory.items()]
        parts.append("### Memory\n\nBytes by which the process grows per record, 10^6 records.\n\n"
                     + table(["store", "bytes"], rows) + "\n")
    return parts


def natural(name):
    """Sorts "64 B" before "4 KiB" and "10^3" before "10^5"."""
    return [int(part) if part.isdigit() else part for part in re.split(r"(\d+)", name)]


def tables(medians, counted):
    by_operation = collections.defaultdict(dict)
    for name, entry in medians.items():
        operation, input_name = name.split("/")
        if "ours" in entry and operation not in ("Reload", "Memory"):
            by_operation[operation][input_name] = entry
    goals = goal_rows(medians, counted)
    parts = []
    if goals:
        missed = sum("missed" in row[-1] for row in goals)
        parts.append("## Goals\n\nTime (or memory) of ours divided by that of what it is compared with; for \">=\" "
                     f"rates, ours divided by theirs. {len(goals) - missed} of {len(goals)} are reached.\n\n"
                     + table(["operation", "input", "compared with", "goal", "measured", ""], goals) + "\n")
    parts.append("## All figures\n")
    for operation in sorted(by_operation):
        entries = by_operation[operation]
        ordered = {name: entries[name] for name in sorted(entries, key=size_key)}
        parts.append(operation_section(operation, ordered))
    return parts + counter_sections(counted)


def size_key(input_name):
    factor = {"B": 1, "KiB": 1024, "MiB": 1024 ** 2}
    kind = input_name.split(",")[0] if "," in input_name else ""
    size = re.search(r"(\d+) (B|KiB|MiB)\b", input_name)
    return (kind if not size or not input_name.startswith(size.group(0)) else "",
            int(size.group(1)) * factor[size.group(2)] if size else 0, natural(input_name))


def cpu_name():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith(("model name", "CPU part")):
            return line.split(":", 1)[1].strip()
    return platform.machine()


def head(context):
    return f"""# Benchmarks

Every operation beside what one would take instead, written by `scripts/bench.sh --report`; nothing here is edited by
hand. All contestants of a table run in one process, their repetitions in random turns, and there are three such processes
(one for what takes seconds), because how fast a program is depends on which memory it was given. A figure is the median of
their processor time, or of the time on the clock where threads (Readers, the load of a file) are involved. A rival is timed
only after it has given the same answer. "Floor" is copying the answer. `{LITERAL}` is the version of the rules that the
tests compare with, written down step by step; it is no rival, and no goal is measured by it.

- Machine: {cpu_name()}, {context["num_cpus"]} cores, {platform.system()} {platform.machine()}
- Compiler: {context.get("compiler", "unknown")}, release build
- {context.get("rivals", "")}
- Load of the machine when it began: {context["load_avg"][0]:.2f}
"""


PLOTS = {
    "lookup_by_size": ("Lookup of a random key", "records", "ns", "Lookup", r"10\^(\d+) records", True, 1),
    "lookup_by_readers": ("Lookup by several threads, 10^6 records", "threads", "ns per lookup", "Readers",
                          r"10\^6 records, (\d+) threads", False, 1),
    "load_by_size": ("Load of a file, 1x1 alternatives", "lines", "ms", "LoadConfig", r"10\^(\d+) lines, 1x1", True,
                     1e6),
    "encode_by_length": ("Encoding of prose", "bytes", "us", "GetURLEncoding", r"prose, (\d+ .*)", None, 1e3),
    "decode_by_length": ("Decoding of prose with %20", "bytes", "us", "GetURLDecoding", r"prose with %20, (\d+ .*)",
                         None, 1e3),
}


def plot(name, medians, docs):
    """Writes DOCS/NAME.svg; returns whether there was anything to draw."""
    title, x_label, y_label, operation, pattern, is_power, unit = PLOTS[name]
    lines = collections.defaultdict(list)
    for key, entry in medians.items():
        match = re.fullmatch(operation + "/" + pattern, key)
        if not match:
            continue
        if is_power is None:
            size, factor = match.group(1).split()
            x = int(size) * {"B": 1, "KiB": 1024, "MiB": 1024 ** 2}[factor]
        else:
            x = 10 ** int(match.group(1)) if is_power else int(match.group(1))
        for who, time in entry.items():
            if who != LITERAL:
                lines[who].append((x, time / unit))
    if not lines:
        return False
    order = sorted(lines, key=lambda who: (who != "ours", who))
    scale = "set logscale y" if is_power is False else "set logscale xy"
    script = [f"set terminal svg size 720,440 font 'sans,12' background 'white'", f"set output '{docs}/{name}.svg'",
              f"set title '{title}'", f"set xlabel '{x_label}'", f"set ylabel '{y_label}'", scale,
              "set key outside right noenhanced", "set grid", "set title noenhanced"]
    if is_power is False:
        script.append("set xtics 1")
    script.append("plot " + ", ".join(
        f"'-' using 1:2 with linespoints linewidth {3 if who == 'ours' else 1} title '{who}'" for who in order))
    for who in order:
        script += [f"{x} {y}" for x, y in sorted(lines[who])] + ["e"]
    subprocess.run(["gnuplot"], input="\n".join(script) + "\n", text=True, check=True)
    return True


def main():
    if len(sys.argv) not in (2, 3):
        print(__doc__.strip(), file=sys.stderr)
        return 2
    medians, counted, context = read(sys.argv[1])
    if not medians:
        print(f"report.py: no results in {sys.argv[1]}; run scripts/bench.sh --report", file=sys.stderr)
        return 1
    parts = tables(medians, counted)
    if len(sys.argv) == 2:
        print("\n".join(parts))
        return 0
    docs = pathlib.Path(sys.argv[2])
    pictures = [f"![{PLOTS[name][0]}]({name}.svg)" for name in PLOTS if plot(name, medians, docs)]
    remarks = pathlib.Path(__file__).with_name("remarks.md")
    text = [head(context), *parts[:1], remarks.read_text() if remarks.exists() else "",
            "## Plots\n\n" + "\n\n".join(pictures) + "\n", *parts[1:]]
    (docs / "benchmarks.md").write_text("\n".join(part for part in text if part).rstrip() + "\n")
    return 0


if __name__ == "__main__":
    sys.exit(main())
