"""Writes the tables of docs/benchmarks.md from results that scripts/bench.sh collected.

usage: report.py RESULTS REMARKS

RESULTS is a directory of Google Benchmark JSON files; REMARKS says what limits the operations that a rival beats. Prints
the page. Every figure is the lower quartile over the repetitions of all processes.
"""

import collections
import json
import pathlib
import platform
import re
import sys

UNIT_NS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
LITERAL = "literal"  # The plain version of the rules; not counted as a rival.


def typical(values):
    """The lower quartile: other load on the machine only ever adds to a time."""
    return sorted(values)[len(values) // 4]


def read(directory):
    """Typical times by "operation/input" and contestant, in the order of the runs, and the first file's context."""
    samples = collections.defaultdict(lambda: collections.defaultdict(list))
    context = None
    for file in sorted(pathlib.Path(directory).glob("*.json")):
        data = json.loads(file.read_text())
        context = context or data["context"]
        for run in sorted(data["benchmarks"], key=lambda run: run["family_index"]):
            if run.get("run_type") == "iteration" and not run.get("error_occurred"):
                operation, input_name, contestant = run["name"].split("/")[:3]
                clock = "real_time" if "/manual_time" in run["name"] else "cpu_time"
                value = run["bytes"] if "bytes" in run else run[clock] * UNIT_NS[run["time_unit"]]
                samples[f"{operation}/{input_name}"][contestant].append(value)
    return {name: {who: typical(values) for who, values in runs.items()}
            for name, runs in samples.items()}, context


def remarks(path):
    """(pattern, sentence) pairs from lines like "- `pattern`: sentence"; a sentence may continue on indented lines."""
    text = re.sub(r"\n[ \t]+", " ", pathlib.Path(path).read_text())
    return re.findall(r"^- `(.+?)`: (.+)$", text, re.MULTILINE)


def spelled(name, value):
    if name.startswith("Memory/"):
        return f"{value:.0f} B"
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if value >= size:
            return f"{value / size:.3g} {unit}"
    return f"{value:.3g} ns"


def table(header, rows):
    return "\n".join("| " + " | ".join(row) + " |" for row in [header, ["---"] * len(header), *rows]) + "\n"


def slower(times, bundles, limits):
    """The rows in which a rival is ahead, the farthest first."""
    rows = []
    for name, entry in times.items():
        rivals = {who: value for who, value in entry.items() if who not in (*bundles, LITERAL)}
        if "ours" not in entry or not rivals:
            continue
        best = min(rivals, key=rivals.get)
        ratio = entry["ours"] / rivals[best]
        if ratio >= 1.005:
            limit = next((sentence for pattern, sentence in limits if re.search(pattern, name)), "")
            if not limit:
                print(f"report.py: no remark says what limits {name}", file=sys.stderr)
            rows.append((ratio, [*name.split("/"), spelled(name, entry["ours"]), best, f"{ratio:.2f}", limit]))
    return [row for _, row in sorted(rows, key=lambda row: -row[0])]


def operation_tables(times):
    parts = []
    for operation in dict.fromkeys(name.split("/")[0] for name in times):
        entries = {name: entry for name, entry in times.items()
                   if name.startswith(operation + "/") and "ours" in entry}
        others = list(dict.fromkeys(who for entry in entries.values() for who in entry if who != "ours"))
        rows = [[name.split("/")[1], spelled(name, entry["ours"]),
                 *(f"{entry['ours'] / entry[who]:.2f}" if who in entry else "" for who in others)]
                for name, entry in entries.items()]
        parts.append(f"### {operation}\n\n" + table(["input", "ours", *others], rows))
    return parts


def hostile_keys(times):
    """The load times of colliding keys, relative to those of random keys of the same length."""
    rows = []
    for name, entry in times.items():
        plain = times.get(name.replace("colliding keys", "16-byte keys"), {})
        if "colliding keys" in name:
            rows += [[name.split("/")[1], who, f"{value / plain[who]:.2f}"] for who, value in entry.items() if who in plain]
    return ["### A load of colliding keys\n\nRelative to a load of random keys of the same length.\n\n"
            + table(["input", "contestant", "ratio"], rows)] if rows else []


def cpu_name():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.machine()


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__.strip())
    times, context = read(sys.argv[1])
    if not times:
        sys.exit(f"report.py: no results in {sys.argv[1]}; run scripts/bench.sh --report")
    rows = slower(times, context["bundles"].split(","), remarks(sys.argv[2]))
    print(f"""# Benchmarks

The time of each operation, compared with what a caller could use instead. `scripts/bench.sh --report` writes this page. Every
ratio is the time of the bundle, loaded with `dlopen` and called through its virtual table or exported functions, divided by the
other's: below 1 the bundle is faster. Most runs use many different inputs, and a contestant is timed only after it has
given the expected answer to all of them. Loads are checked after they are timed, by 100 lookups; lookups during loads are not
checked. Contestants take turns in one process; a time is the lower quartile of the processor time over all repetitions, because
other load on the machine only adds to it. The table "Memory" compares bytes of resident memory per record instead of times.

- `literal`: the plain version of the rules that the tests compare with; it is not counted as a rival.
- `by hand`, `memchr`, `memmem`: the few lines over views that a caller would write, inlined (`bench/by_hand.h`).
- Machine: {cpu_name()}, {context["num_cpus"]} processors, load {context["load_avg"][0]:.1f} at the start
- Compiler: {context["compiler"]}, release build; {context["rivals"]}

## Where a rival is ahead
""")
    print(table(["operation", "input", "ours", "rival", "ratio", "what limits it"], rows) if rows else "Nowhere.\n")
    print("## All ratios\n")
    print("\n".join(operation_tables(times) + hostile_keys(times)).rstrip())


if __name__ == "__main__":
    main()
