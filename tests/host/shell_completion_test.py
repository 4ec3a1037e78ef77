#!/usr/bin/env python3
"""Tests the bash completion of bundle_host: it must offer what the program lists in its help."""
import os
import re
import subprocess

import host_case
from host_case import HOST, HostTest

SCRIPT = os.path.join(os.path.dirname(__file__), "../../host/bundle_host.bash")


class ShellCompletion(HostTest):
    def offered(self, *words):
        """Returns the candidates that Tab offers for the last word."""
        done = subprocess.run(["bash", "-c", 'source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _bundle_host; '
                               'printf "%s\\n" "${COMPREPLY[@]}"', SCRIPT, HOST, *words],
                              capture_output=True, text=True, cwd=self.dir, check=True)
        self.assertEqual(done.stderr, "")
        return sorted(done.stdout.split())

    def commands(self):
        return re.findall(r"^  ([a-z-]+) ", self.host("help").stdout, re.MULTILINE)

    def test_options_and_commands_are_those_of_the_program(self):
        options = re.findall(r"^  \S*?(--[a-z-]+)", self.host("--help").stdout, re.MULTILINE)
        self.assertIn("--keep-going", options)
        self.assertIn("quit", self.commands())
        self.assertEqual(self.offered(""), sorted(options + self.commands()))
        self.assertEqual(self.offered("--echo", "--log-level", "off", "unl"), ["unload"])
        self.assertEqual(self.offered("help", ""), sorted(self.commands()))

    def test_operations_are_those_of_the_program(self):
        for before in [["call"], ["call", "--json"], ["-b", "time", "time", "5", "call"]]:
            self.assertEqual(len(self.offered(*before, "")), 22)
        self.assertEqual(self.offered("call", "StrTo"), ["StrToLower", "StrToUpper"])
        self.assertEqual(self.offered("time", "5", ""), ["call"])

    def test_levels_are_offered_where_one_is_wanted(self):
        self.assertEqual(self.offered("--log-level", ""), ["0", "1", "2", "off"])
        self.assertEqual(self.offered("log", "o"), ["off"])

    def test_files_are_offered_for_options_and_commands_that_take_one(self):
        self.write("filed", "")
        for before in [["-c"], ["--config-dir"], ["-f"], ["--svc-conf"], ["-b"], ["--bundle"], ["--log-file"], ["run"], ["load"],
                       ["load", "a"]]:
            self.assertEqual(self.offered(*before, "fi"), ["filed"], before)


if __name__ == "__main__":
    host_case.main()
