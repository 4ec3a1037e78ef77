#!/usr/bin/env python3
"""Runs the commands that the pages show: transcripts_test.py PROJECT BUILD.

A fenced block with a line `$ COMMAND` is a transcript: each command is run by bash in a copy of examples/ with the built programs on
PATH, and must print the lines that follow it; the page may leave standard error out. A line `...` stands for any lines. Dates, times and
durations are not compared. A block of language `sh` must be valid shell; its commands and those of inline code must name scripts,
presets and tests that exist.
"""
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

import built

PROJECT, BUILD = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
PAGES = [PROJECT / "README.md", PROJECT / "CONTRIBUTING.md", *sorted((PROJECT / "docs").glob("*.md"))]
PROGRAMS = ["host", "tools/almcfg"]
LIBRARIES = ["src", "host", "examples/alarm_agent", "tools/recorder"]
BUILT = ["host/bundle_host", "tools/almcfg/almcfg", "src/libii_ascii_util.so", "tools/recorder/libii_ascii_recorder.so",
         "examples/alarm_agent/libalarm_agent_example.so"]
VARIABLE = [(re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d(\.\d+)?Z?"), "TIME"), (re.compile(r"\d\d:\d\d:\d\d(\.\d+)?"), "CLOCK"),
            (re.compile(r"\b\d+(\.\d+)? (ns|us|ms|s)\b"), "DURATION")]


def blocks(page):
    """Language, number of the first line inside, and lines of every fenced block."""
    fence = None
    for number, line in enumerate(page.read_text().splitlines(), 1):
        mark = re.match(r"```(\w*)$", line)
        if fence is None and mark:
            fence = (mark.group(1), number + 1, [])
        elif mark:
            yield fence
            fence = None
        elif fence is not None:
            fence[2].append(line)


def commands(lines):
    """(offset, command, expected lines) for each `$ ` line of a transcript; a command may continue after a backslash."""
    found = []
    continues = False
    for offset, line in enumerate(lines):
        if continues:
            found[-1][1] += "\n" + line
        elif line.startswith("$ "):
            found.append([offset, line[2:], []])
        elif found:
            found[-1][2].append(line)
        continues = (continues or line.startswith("$ ")) and line.endswith("\\")
    return found


def steady(text):
    for pattern, name in VARIABLE:
        text = pattern.sub(name, text)
    return text


def matches(expected, printed):
    """Whether the printed lines are the expected ones, where `...` stands for any lines."""
    parts = [steady(line) for line in expected]
    pattern = "".join(r"(?:.*\n)*?" if line == "..." else re.escape(line.rstrip()) + r" *\n" for line in parts)
    return re.fullmatch(pattern, steady(printed)) is not None


class Transcripts(unittest.TestCase):
    maxDiff = None

    def test_commands_print_what_the_page_shows(self):
        if absent := built.missing(*(BUILD / file for file in BUILT)):
            self.fail(absent)
        environment = {**os.environ, "LC_ALL": "C.UTF-8", "COLUMNS": "120",
                       "PATH": ":".join([*(str(BUILD / place) for place in PROGRAMS), os.environ["PATH"]]),
                       "LD_LIBRARY_PATH": ":".join(str(BUILD / place) for place in LIBRARIES)}
        ran = 0
        for page in PAGES:
            for _, start, lines in blocks(page):
                shown = commands(lines)
                if not shown:
                    continue
                with tempfile.TemporaryDirectory() as folder:
                    shutil.copytree(PROJECT / "examples", pathlib.Path(folder) / "examples")
                    for offset, command, expected in shown:
                        def printed(errors):
                            done = subprocess.run(["bash", "-c", command], cwd=folder, env=environment, text=True, check=False,
                                                  stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=errors, timeout=300)
                            return done.stdout
                        if not matches(expected, printed(subprocess.DEVNULL)) and not matches(expected, printed(subprocess.STDOUT)):
                            self.fail(f"{page.relative_to(PROJECT)}:{start + offset}: write what `{command}` prints now:\n"
                                      f"{printed(subprocess.STDOUT)}")
                        ran += 1
        self.assertGreater(ran, 5)


class Commands(unittest.TestCase):
    def test_blocks_are_valid_shell(self):
        for page in PAGES:
            for language, start, lines in blocks(page):
                if language == "sh":
                    done = subprocess.run(["bash", "-n"], input="\n".join(lines), text=True, check=False, stderr=subprocess.PIPE)
                    self.assertEqual(done.stderr, "", f"{page.name}:{start}: correct this block")

    def listed_tests(self):
        listed = subprocess.run(["ctest", "-N"], cwd=BUILD, text=True, check=True, stdout=subprocess.PIPE).stdout
        tests = re.findall(r"^ *Test +#\d+: (\S+)", listed, re.MULTILINE)
        # ctest knows the tests of a program only when it is built.
        absent = [test.removesuffix("_NOT_BUILT") for test in tests if test.endswith("_NOT_BUILT")]
        if absent:
            self.fail(f"not built: {', '.join(absent)}; run: cmake --build {BUILD}")
        return tests

    def test_units_of_the_bundle_have_tests_of_their_name(self):
        tests = self.listed_tests()
        for source in sorted((PROJECT / "src").rglob("*.cpp")):
            name = f"{source.parent.name}.{source.stem}."
            self.assertTrue(any(test.startswith(name) for test in tests),
                            f"no test's name starts with {name}: name the test program of {source.name} {source.stem}_test")

    def test_presets_and_tests_exist(self):
        presets = {preset["name"] for preset in json.loads((PROJECT / "CMakePresets.json").read_text())["configurePresets"]}
        tests = self.listed_tests()
        for page in PAGES:
            text = page.read_text()
            for preset in re.findall(r"--preset (\w+)", text):
                self.assertIn(preset, presets, f"{page.name}: correct the preset")
            for pattern in re.findall(r"\s-R '?([^\s'`]+)", text):
                self.assertTrue(any(re.search(pattern, name) for name in tests), f"{page.name}: no test matches -R {pattern}")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
