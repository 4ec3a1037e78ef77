#!/usr/bin/env python3
"""Mutation testing of src/; called by mutate.sh, which says how."""

import argparse
import concurrent.futures
import pathlib
import random
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
COPY = ROOT / "build" / "mutate" / "tree"
BUILD = ROOT / "build" / "mutate" / "build"
TEST_SECONDS = 20
JOBS = 2

# (what it is, pattern, replacement); a pattern matches code only, never comments or texts.
RULES = [
    ("relation", r" == ", " != "), ("relation", r" != ", " == "),
    ("relation", r" < ", " <= "), ("relation", r" > ", " >= "),
    ("relation", r" <= ", " < "), ("relation", r" >= ", " > "),
    ("arithmetic", r" \+ ", " - "), ("arithmetic", r" - ", " + "),
    ("arithmetic", r" \* (?=[\w(])", " / "), ("arithmetic", r"\+\+(?=\w)", "--"),
    ("arithmetic", r" \+= ", " -= "), ("arithmetic", r" << ", " >> "), ("arithmetic", r" & ", " | "),
    ("logic", r" && ", " || "), ("logic", r" \|\| ", " && "), ("logic", r"!(?=[\w(])", ""),
    ("constant", r"(?<![\w.'])(\d+)(?![\w.'])", lambda m: str(int(m.group(1)) + 1)),
    ("constant", r"\btrue\b", "false"), ("constant", r"\bfalse\b", "true"),
    ("arguments", r"\((\w+), (\w+)\)", r"(\2, \1)"),
    ("statement", r"^(\s+)(?!return|const|auto|static|using|case|default|break|throw)[\w:.>()\[\]*-]+(\(| = ).*;$", r"\1;"),
    ("statement", r"^(\s+)(break|return|continue);$", r"\1;"),
    ("text", r'"([^"\\]+)"', r'"\1?"'),
]


def code_mask(text):
    """The text with comments blanked, so that columns stay."""
    return re.sub(r"//[^\n]*", lambda m: " " * len(m.group()), text)


def mutants(unit):
    """(file, line number, what, old line, new line) of everything that the rules can change."""
    for path in sorted((ROOT / "src").glob(f"{unit}.cpp")):
        lines = path.read_text(encoding="utf-8").split("\n")
        for number, line in enumerate(lines):
            code = code_mask(line)
            if not code.strip() or code.lstrip().startswith("#"):
                continue
            for what, pattern, replacement in RULES:
                texts = [] if what == "text" else [m.span() for m in re.finditer(r'"[^"]*"|\'[^\']*\'', code)]
                for match in re.finditer(pattern, code):
                    if what != "statement" and any(a <= match.start() < b for a, b in texts):
                        continue
                    changed = line[:match.start()] + match.expand(replacement) if isinstance(replacement, str) \
                        else line[:match.start()] + replacement(match)
                    changed += line[match.end():]
                    if changed != line:
                        yield path.relative_to(ROOT), number, what, line, changed


def run(command, seconds=None):
    """Whether the command succeeded in time."""
    try:
        return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=seconds,
                              check=False).returncode == 0
    except subprocess.TimeoutExpired:
        return False


def copy_tree():
    COPY.mkdir(parents=True, exist_ok=True)
    files = subprocess.run(["git", "ls-files"], cwd=ROOT, check=True, capture_output=True, text=True).stdout.split("\n")
    for name in filter(None, files):
        target = COPY / name
        if not target.exists() or target.read_bytes() != (ROOT / name).read_bytes():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / name, target)


def build(*targets):
    return run(["cmake", "--build", str(BUILD), "-j", str(JOBS), "--target", *targets], 600)


def tests_of(program):
    """Every test of a GoogleTest program as a command of its own, as ctest runs them."""
    path = next(BUILD.rglob(program), None)
    if path is None:
        return []
    listing = subprocess.run([str(path), "--gtest_list_tests"], capture_output=True, text=True, check=True).stdout
    suite, commands = "", []
    for line in listing.splitlines():
        name = line.split("#")[0].rstrip()
        if name and not name.startswith(" ") and name.endswith("."):
            suite = name
        elif name.startswith("  "):
            commands.append([str(path), f"--gtest_filter={suite}{name.strip()}"])
    return commands


def failing(commands):
    """Those of the commands that fail, each run in turn on a few processors."""
    with concurrent.futures.ThreadPoolExecutor(JOBS) as pool:
        results = list(pool.map(lambda command: run(command, TEST_SECONDS), commands))
    return [command for command, good in zip(commands, results) if not good]


def judge(mutant, programs, passing):
    """killed, survived or invalid (it does not compile)."""
    path, number, _, old, new = mutant
    target = COPY / path
    original = target.read_text(encoding="utf-8")
    lines = original.split("\n")
    assert lines[number] == old
    lines[number] = new
    target.write_text("\n".join(lines), encoding="utf-8")
    try:
        if not build("ascii_util_objects"):
            return "invalid"
        own = f"{path.stem}_test"
        for group in ([own] if own in programs else [], [p for p in programs if p != own]):
            if group and not build(*group):
                return "invalid"
            commands = [command for program in group for command in passing[program]]
            if commands and failing(commands):
                return "killed"
        return "survived"
    finally:
        target.write_text(original, encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(prog="mutate.sh")
    parser.add_argument("--count", type=int, default=300)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--unit", default="*")
    parser.add_argument("--list", action="store_true")
    args = parser.parse_args()
    chosen = list(mutants(args.unit))
    if args.list:
        for path, number, what, old, new in chosen:
            print(f"{path}:{number + 1}: {what}: {old.strip()}  ->  {new.strip()}")
        return 0
    if not chosen:
        sys.exit(f"mutate.sh: there is no unit '{args.unit}' with anything to change")
    random.Random(args.seed).shuffle(chosen)

    copy_tree()
    units = [path.stem for path in sorted((ROOT / "tests").glob("*_test.cpp"))]
    programs = units + ["exhausted_memory_test", "failing_surroundings_test"]
    configured = run(["cmake", "-S", str(COPY), "-B", str(BUILD), "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                      "-DCMAKE_CXX_FLAGS_DEBUG=-O0", "-DASCII_UTIL_OTHER_CXX=none", "-DASCII_UTIL_BUILD_TOOLS=OFF",
                      "-DASCII_UTIL_BUILD_EXAMPLES=OFF"])
    if not configured or not build(*programs):
        sys.exit("mutate.sh: the copy in build/mutate does not build")
    passing = {program: tests_of(program) for program in programs}
    # Some want what only ctest sets up.
    for command in failing([command for commands in passing.values() for command in commands]):
        print("left out, as it fails without any change: " + " ".join(command[1:]), flush=True)
        for commands in passing.values():
            if command in commands:
                commands.remove(command)

    counts = {"killed": 0, "survived": 0, "invalid": 0}
    for mutant in chosen:
        if counts["killed"] + counts["survived"] >= args.count:
            break
        verdict = judge(mutant, programs, passing)
        counts[verdict] += 1
        if verdict == "survived":
            path, number, what, old, new = mutant
            print(f"survived: {path}:{number + 1}: {what}: {old.strip()}  ->  {new.strip()}", flush=True)
    print(f"{counts['killed'] + counts['survived']} changes: {counts['killed']} killed, {counts['survived']} survived; "
          f"{counts['invalid']} more did not compile")
    return 1 if counts["survived"] else 0


if __name__ == "__main__":
    sys.exit(main())
