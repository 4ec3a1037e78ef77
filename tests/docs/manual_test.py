#!/usr/bin/env python3
"""Compares the manual page of bundle_host and docs/host.md with the output of --help: manual_test.py PROGRAM PAGE.

Options and commands must be the same, with the same arguments, and each must be explained beginning with the words that
--help has for it. The dictionary of the fuzz target has every command, too.
"""
import itertools
import pathlib
import re
import subprocess
import sys
import unittest

import built

PROGRAM, PAGE = sys.argv[1:3]
PROJECT = pathlib.Path(__file__).parents[2]
DICTIONARY = PROJECT / "fuzz/host/host_command_line.dict"


def plain(text):
    """A line of the page without its marks."""
    return re.sub(r"\\f.", "", text).replace(r"\-", "-").replace(r"\(aq", "'").replace(r"\e", "\\")


def entries(section):
    """Head and first words of every .TP entry of a section of the page."""
    page = pathlib.Path(PAGE).read_text()
    body = re.search(rf"^\.SH {section}\n(.*?)(?=^\.SH |\Z)", page, re.MULTILINE | re.DOTALL).group(1)
    found = re.findall(r"^\.TP\n\.B (.*)\n(.*)$", body, re.MULTILINE)
    return {plain(head): plain(words) for head, words in found}


def helped():
    """The options and commands of --help, each as head and words."""
    text = subprocess.run([PROGRAM, "--help"], text=True, stdout=subprocess.PIPE, check=True).stdout
    options, commands = text.split("\nCommands, also for files and the console:\n")
    rows = {"OPTIONS": re.findall(r"^  (-\S.*?) {2,}(\S.*)$", options, re.MULTILINE),
            "COMMANDS": re.findall(r"^  ([a-z]\S*.*?)(?: {2,}|\n +)(\S.*)$", commands, re.MULTILINE)}
    return {section: {head.replace(",--", ", --").replace(" ...", ""): words for head, words in pairs}
            for section, pairs in rows.items()}


class ManualPage(unittest.TestCase):
    longMessage = False  # The messages say what to write where.

    def compare(self, section):
        said = helped()[section]
        written = entries(section)
        self.assertGreater(len(said), 5)
        for head, words in said.items():
            entry = ".TP\n.B {}\n{} ...".format(*(text.replace("-", r"\-") for text in (head, words[0].upper() + words[1:])))
            self.assertTrue(written.get(head, "").lower().startswith(words.lower()), f"{PAGE}, {section}: write\n{entry}")
        for head in sorted(set(written) - set(said)):
            self.fail(f"{PAGE}, {section}: delete the entry {head}; --help lacks it")

    def test_options_are_those_of_the_program(self):
        self.compare("OPTIONS")

    def test_commands_are_those_of_the_program(self):
        self.compare("COMMANDS")

    def test_table_of_commands_is_that_of_the_program(self):
        text = (pathlib.Path(PAGE).parent.parent / "host.md").read_text()
        table = text[text.index("| command | does |"):]
        written = re.findall(r"^\| `(.*?)` \| (.*) \|$", table[: table.index("\n\n")], re.MULTILINE)
        said = helped()["COMMANDS"]
        for row in written:
            self.assertIn(row, said.items(), f"docs/host.md, table of commands: delete | `{row[0]}` | {row[1]} |; --help lacks it")
        for row, (head, words) in itertools.zip_longest(written, said.items()):
            before = f"before `{row[0]}`" if row else "at the end"
            self.assertEqual(row, (head, words), f"docs/host.md, table of commands: insert | `{head}` | {words} | {before}")

    def test_dictionary_of_the_fuzz_target_has_every_command(self):
        lines = DICTIONARY.read_text().splitlines()
        for head in helped()["COMMANDS"]:
            name, *arguments = head.split()
            line = f'"{name} "' if arguments else f'"{name}"'
            self.assertIn(line, lines, f"{DICTIONARY}: write the line {line}")

    def test_comments_list_every_command(self):
        header = PROJECT / "host/commands/command.h"
        listed = re.findall(r"[\w-]+", " ".join(re.findall(r"Commands\(\);.*?// (.*)", header.read_text())))
        sources = {path: path.read_text() for path in (PROJECT / "host").rglob("*.cpp")}
        for name in (head.split()[0] for head in helped()["COMMANDS"]):
            self.assertIn(name, listed, f"{header}, comments of the groups: write {name}")
            path, text = next((path, text) for path, text in sources.items() if f'{{"{name}", "' in text)
            words = re.findall(r"[\w-]+", text.split("\n\n")[0])
            self.assertIn(name, words, f"{path}, first comment: write {name}")

    def test_environment_variable_is_the_one_in_help(self):
        text = subprocess.run([PROGRAM, "--help"], text=True, stdout=subprocess.PIPE, check=True).stdout
        named = re.search(r"environment variable (\w+)", text).group(1)
        self.assertIn(named, entries("ENVIRONMENT"), f"{PAGE}, ENVIRONMENT: write an entry for {named}")


if __name__ == "__main__":
    if absent := built.missing(PROGRAM):
        sys.exit(absent)
    unittest.main(argv=sys.argv[:1])
