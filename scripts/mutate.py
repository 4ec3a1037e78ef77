#!/usr/bin/env python3
"""Mutation testing of src/; called by mutate.sh, which says how.

The order in which tests run is what makes it bearable: the unit's own first, then those of the units that include its header,
then all others; each program in one process, but for the tests that need a process of their own; slow ones last. The first
failure ends it.
"""

import argparse
import concurrent.futures
import json
import os
import pathlib
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import time

sys.dont_write_bytecode = True  # Nothing but sources in scripts/.
import mutations  # noqa: E402

ROOT = pathlib.Path(__file__).resolve().parent.parent
WORK = ROOT / "build" / "mutate"
COPY = WORK / "tree"
EQUIVALENT = ROOT / "scripts" / "mutate.equivalent"
SLOW_SECONDS = 0.4
MEMORY = 4 << 30
FILTER = "--gtest_filter="


def run(command, seconds=None, env=None, cwd=None, limits=None):
    """The exit code; None when the time was up. Ends whatever the command leaves running."""
    def limit():
        for what, most in (limits or {}).items():
            resource.setrlimit(what, (most, most))
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, stdin=subprocess.DEVNULL,
                               env={**os.environ, **(env or {})}, cwd=cwd, start_new_session=True, preexec_fn=limit)
    try:
        return process.wait(timeout=seconds)
    except subprocess.TimeoutExpired:
        return None
    finally:
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()


class Program:
    """One test program and how its tests are run."""

    def __init__(self, path, env, cwd, jobs, limits):
        self.path, self.env, self.cwd, self.jobs, self.limits = path, env, cwd, jobs, limits
        self.tests = []     # (name, command) as ctest has them
        self.together = None  # the command for those that share a process
        self.alone = []     # commands, the quick ones first
        self.seconds = 0.0

    def passes(self, command):
        # An endless loop is told by its processor time, which does not depend on what else the machine does.
        limits = {**self.limits, resource.RLIMIT_CPU: 2 + 2 * int(self.seconds + 1)}
        return run(command, 60 + 10 * self.seconds, self.env, self.cwd, limits) == 0

    def learn(self):
        """Finds out which tests pass at all, which are slow, and which do not share a process. Returns the failing ones."""
        taken, failing = {}, []
        for name, command in self.tests:
            start = time.monotonic()
            self.seconds = 60
            if not self.passes(command):
                failing.append(name)
            taken[name] = (time.monotonic() - start, command)
        good = [name for name in taken if name not in failing]
        quick = [name for name in good if taken[name][0] < SLOW_SECONDS and taken[name][1][1].startswith(FILTER)]
        apart = []
        while len(quick) > 1:
            self.together = [str(self.path), FILTER + ":".join(quick), "--gtest_fail_fast"]
            bad = self.not_together(quick)
            apart += bad
            quick = [name for name in quick if name not in bad]
            if not bad:
                break
        if len(quick) <= 1:
            self.together = None
        shared = quick if self.together else []
        self.alone = [taken[name][1] for name in sorted(good, key=lambda name: taken[name][0]) if name not in shared]
        self.seconds = max([seconds for seconds, _ in taken.values()] + [sum(taken[name][0] for name in shared)])
        return failing

    def not_together(self, names):
        """Those of the tests that fail when all run in one process; all of them when that process dies."""
        report = WORK / "report.json"
        report.unlink(missing_ok=True)
        command = [argument for argument in self.together if argument != "--gtest_fail_fast"]
        code = run([*command, f"--gtest_output=json:{report}"], 120, self.env, self.cwd, self.limits)
        if code == 0:
            return []
        if not report.exists():
            return list(names)
        suites = json.loads(report.read_text(encoding="utf-8"))["testsuites"]
        bad = [f"{suite['name']}.{test['name']}" for suite in suites for test in suite["testsuite"] if "failures" in test]
        return bad or list(names)

    def notices(self):
        """Whether a test fails."""
        if self.together and not self.passes(self.together):
            return True
        if self.jobs == 1:
            return any(not self.passes(command) for command in self.alone)
        with concurrent.futures.ThreadPoolExecutor(self.jobs) as pool:
            return not all(pool.map(self.passes, self.alone))


class Bench:
    """The copy of the sources, its build and its tests."""

    def __init__(self, races, jobs):
        self.jobs = jobs
        self.build_dir = WORK / ("races" if races else "build")
        self.flags = ["-DCMAKE_CXX_FLAGS_DEBUG=-O1 -g1", "-DASCII_UTIL_SANITIZE=thread"] if races \
            else ["-DCMAKE_CXX_FLAGS_DEBUG=-O0"]
        # ThreadSanitizer takes address space by the terabyte.
        self.limits = {} if races else {resource.RLIMIT_AS: MEMORY}
        self.targets = ["almtable_test", "race_test"] if races else ["bundle_tests"]
        self.wanted = ["-R", "Races|UnderReaders"] if races else ["-L", "^bundle$"]
        self.programs = {}

    def set_up(self):
        COPY.mkdir(parents=True, exist_ok=True)
        listed = subprocess.run(["git", "ls-files"], cwd=ROOT, check=True, capture_output=True, text=True).stdout.split("\n")
        names = {name for name in listed if name and (ROOT / name).exists()}
        for name in names:
            target = COPY / name
            if not target.exists() or target.read_bytes() != (ROOT / name).read_bytes():
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(ROOT / name, target)
        for path in [path for path in COPY.rglob("*") if path.is_file() and str(path.relative_to(COPY)) not in names]:
            path.unlink()
        configure = ["cmake", "-S", str(COPY), "-B", str(self.build_dir), "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                     *self.flags, "-DASCII_UTIL_OTHER_CXX=none", "-DASCII_UTIL_BUILD_TOOLS=OFF",
                     "-DASCII_UTIL_BUILD_EXAMPLES=OFF"]
        if run(configure) != 0 or not self.build(*self.targets):
            sys.exit(f"mutate.sh: the copy in {COPY} does not build")
        self.find_tests()

    def build(self, *targets):
        return run(["ninja", "-C", str(self.build_dir), "-j", str(self.jobs), *targets], 900) == 0

    def find_tests(self):
        shown = subprocess.run(["ctest", "--test-dir", str(self.build_dir), "--show-only=json-v1", *self.wanted],
                               check=True, capture_output=True, text=True).stdout
        for test in json.loads(shown)["tests"]:
            properties = {entry["name"]: entry["value"] for entry in test["properties"]}
            env = dict(entry.split("=", 1) for entry in properties.get("ENVIRONMENT", []))
            path = pathlib.Path(test["command"][0])
            program = self.programs.setdefault(
                path.name, Program(path, env, properties["WORKING_DIRECTORY"], self.jobs, self.limits))
            name = test["command"][1].removeprefix(FILTER) if test["command"][1].startswith(FILTER) else test["name"]
            program.tests.append((name, test["command"]))
        for program in self.programs.values():
            for name in program.learn():
                print(f"left out, as it fails without any change: {name}", flush=True)

    def users_of(self, unit):
        """The units that include the unit's header."""
        return {path.stem for path in (COPY / "src").iterdir()
                if re.search(rf'#include "src/{unit}\.h"', path.read_text(encoding="utf-8"))} - {unit}

    def order(self, unit):
        """The programs that know the unit best, and all others that may notice a change of it, the quick ones first."""
        near = [unit, *sorted(self.users_of(unit))]
        reached = set(near)
        waiting = list(near)
        while waiting:
            more = self.users_of(waiting.pop()) - reached
            reached |= more
            waiting += more
        known = [f"{name}_test" for name in near if f"{name}_test" in self.programs]
        far = [name for name in self.programs if name not in known and self.may_notice(name, reached)]
        return known, sorted(far, key=lambda name: self.programs[name].seconds)

    def may_notice(self, program, units):
        """Whether the program is one of those for several units, or its tests use one of these."""
        sources = [*(COPY / "tests").glob(f"{program}.cpp"), *(COPY / "tests" / program.removesuffix("_test")).glob("*.*")]
        text = "".join(path.read_text(encoding="utf-8") for path in sources)
        return not text or any(f'#include "src/{unit}.h"' in text for unit in units)

    def judge(self, mutant):
        """killed and by what, survived, or invalid (it does not compile)."""
        target = COPY / mutant.path
        original = target.read_text(encoding="utf-8")
        target.write_text(mutant.applied_to(original), encoding="utf-8")
        try:
            near, far = self.order(mutant.path.stem)
            for name in near:
                if not self.build(name):
                    return "invalid", ""
                if self.programs[name].notices():
                    return "killed", name
            if not self.build(*self.targets):
                return "invalid", ""
            for name in far:
                if self.programs[name].notices():
                    return "killed", name
            return "survived", ""
        finally:
            target.write_text(original, encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(prog="mutate.sh", add_help=False)
    parser.add_argument("--count", type=int, default=300)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--unit", action="append")
    parser.add_argument("--jobs", type=int, default=len(os.sched_getaffinity(0)))
    parser.add_argument("--races", action="store_true")
    parser.add_argument("--survivors", action="store_true")
    parser.add_argument("--list", action="store_true")
    args = parser.parse_args()
    explained = mutations.read_explained(EQUIVALENT)
    possible = mutations.possible(ROOT, args.unit or ["*"], mutations.ORDER_RULES if args.races else mutations.RULES)
    chosen = [mutant for mutant in possible if mutant.key() not in explained]
    if args.list:
        print("\n".join(map(str, chosen)))
        return 0
    known = {mutant.key() for rules in (mutations.RULES, mutations.ORDER_RULES) for mutant in mutations.possible(ROOT, ["*"], rules)}
    for place, old, new in sorted(explained - known):
        print(f"explained, but no longer possible: {place}: {old}  ->  {new}", flush=True)
    last = WORK / "survivors"
    if args.survivors:
        again = set(last.read_text(encoding="utf-8").splitlines()) if last.exists() else set()
        chosen = [mutant for mutant in chosen if mutant.name() in again]
    if not chosen:
        sys.exit("mutate.sh: there is nothing to change")
    random.Random(args.seed).shuffle(chosen)

    bench = Bench(args.races, args.jobs)
    bench.set_up()
    counts = {"killed": 0, "survived": 0, "invalid": 0}
    survivors = []
    with open(WORK / "verdicts", "w", encoding="utf-8") as verdicts:
        for mutant in chosen:
            if counts["killed"] + counts["survived"] >= args.count:
                break
            start = time.monotonic()
            verdict, by = bench.judge(mutant)
            counts[verdict] += 1
            print(f"{time.monotonic() - start:.1f}s {verdict} {by}: {mutant}", file=verdicts, flush=True)
            if verdict == "survived":
                survivors.append(mutant.name())
                last.write_text("\n".join(survivors), encoding="utf-8")
                print(f"survived: {mutant}", flush=True)
    last.write_text("\n".join(survivors), encoding="utf-8")
    print(f"{counts['killed'] + counts['survived']} changes: {counts['killed']} killed, {counts['survived']} survived; "
          f"{counts['invalid']} more did not compile, {len(possible) - len([m for m in possible if m.key() not in explained])} "
          "are explained as equivalent")
    return 1 if survivors else 0


if __name__ == "__main__":
    sys.exit(main())
