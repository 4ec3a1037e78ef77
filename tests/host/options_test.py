#!/usr/bin/env python3
"""Tests the options of the program, and its log file."""
import json
import os
import subprocess

import host_case
from host_case import BUNDLE, HOST, HostTest, broken


class Options(HostTest):
    def test_wrong_usage_is_one_line_and_exit_code_2(self):
        for arguments, message in [
            ([], "a command is missing"),
            (["--nonsense"], "no option '--nonsense'"),
            (["nonsense"], "no command 'nonsense'; 'help' lists them"),
            (["help", "nonsense"], "no command 'nonsense'; 'help' lists them"),
            (["call", "nonsense"], "no operation 'nonsense'; 'help call' lists them"),
            (["load", ""], "'' is not a library; give its path"),
            (["bundels"], "no command 'bundels'; did you mean bundles?"),
            (["consol"], "did you mean console?"),
            (["--log-level", "7", "help"], "--log-level: '7' is not a log level; there are 0, 1, 2 and off"),
            (["--bundle"], "--bundle"),
            (["run"], "run takes 1 argument, not 0: run FILE"),
            (["bundles", "--jason"], "'--jason' is not an argument of a listing"),
            (["set", "A", "b"], "set: 'b' is not an integer"),
            (["time", "0", "call", "IsValid"], "'0' is not a number of repeats"),
            (["time", "5", "bundles", "x"], "'bundles' cannot be timed"),
            (["set", "", "1"], "set: '' is not an item; give its name"),
            (["--svc-conf", "", "bundles"], "--svc-conf: the name is empty"),
            (["-c", "", "bundles"], "--config-dir: the name is empty"),
            (["--log-file", "", "bundles"], "--log-file: the name is empty"),
        ]:
            with self.subTest(arguments=arguments):
                self.assert_fails(self.host(*arguments), 2, message)

    def test_help_and_version_are_given(self):
        self.assertIn("call OPERATION [ARGUMENT...]", self.host("--help").stdout)
        self.assertRegex(self.host("--version").stdout, r"^bundle_host \d+\.\d+\.\d+\n$")
        self.assertIn("SplitStr text:text separator:text -> integer, pieces:list", self.host("help", "call").stdout)
        self.assertEqual(self.host("unload", "--help").stdout, self.host("help", "unload").stdout)
        self.assertTrue(self.host("run", "--help").stdout.startswith("run FILE\n  run commands from a file"))

    def test_directives_come_before_bundles_however_the_options_are_ordered(self):
        conf = self.write("svc.conf", f"dynamic util Service_Object * {BUNDLE}:_make_ii_ascii_util() \"\"\n")
        done = self.host("-b", broken("pinned"), "-f", conf, "-c", self.config, "--log-level", "off", "bundles", "--json")
        self.assertEqual([row["name"] for row in json.loads(done.stdout)], ["util", "broken_pinned"])

    def test_an_unreadable_configuration_directory_is_reported(self):
        self.assert_fails(self.host("-c", self.dir + "/none", "bundles"), 1, "/none/: No such file or directory")

    def test_the_environment_names_the_configuration_directory_too(self):
        done = self.host("--log-level", "off", "--bundle", BUNDLE, "call", "GetAlmCfgValue", "LINK", "RTR", "down", "7",
                         environment={"BUNDLE_HOST_CONFIG_DIR": self.config})
        self.assertEqual(done.stdout, "result: 0\nvalue: 15\n")


class LogFile(HostTest):
    def test_the_log_goes_to_the_file_and_respects_the_level(self):
        log = os.path.join(self.dir, "log")
        arguments = ["--config-dir", self.config, "--bundle", BUNDLE, "--log-file", log]
        self.assertEqual(self.host(*arguments, "--log-level", "2", "call", "IsTransQueltEnabled").stderr, "")
        with open(log, encoding="ascii") as file:
            self.assertRegex(file.read(), r"^\S+Z \[2\] asciiutilsvc:32 unknown: run successfull!! \n$")
        self.host(*arguments, "call", "IsTransQueltEnabled")
        with open(log, encoding="ascii") as file:
            self.assertRegex(file.read(), r" \[1\] asciiutilifimpl:53 unknown: acces QueltTools \n$")

    def test_a_log_file_that_cannot_be_opened_is_reported(self):
        self.assert_fails(self.host("--log-file", self.dir, "bundles"), 1, "cannot be opened for writing")

    def test_a_log_file_that_cannot_be_written_is_reported_once_and_no_record_is_lost(self):
        done = self.host("--config-dir", self.config, "--log-file", "/dev/full", "--bundle", BUNDLE, "call", "IsTransQueltEnabled")
        self.assertEqual((done.returncode, done.stdout), (1, "result: false\n"))
        problem, *records = done.stderr.splitlines()
        self.assertEqual(problem, "bundle_host: /dev/full: cannot be written: No space left on device; the log continues here")
        self.assertEqual([record.split(": ", 1)[1] for record in records], ["run successfull!! ", "acces QueltTools "])

    def test_the_records_of_a_console_call_are_shown_and_reach_the_file(self):
        log = self.write("log", "kept\n")
        done = self.host("--config-dir", self.config, "--log-file", log, "--bundle", BUNDLE, "console",
                         stdin="call IsTransQueltEnabled\n")
        self.assertEqual((done.stdout.count("acces QueltTools"), done.stderr), (1, ""))
        with open(log, encoding="ascii") as file:
            self.assertEqual([line.split(": ", 1)[-1] for line in file], ["kept\n", "run successfull!! \n", "acces QueltTools \n"])

    def test_a_log_file_that_was_given_up_does_not_write_records_twice(self):
        done = self.host("--config-dir", self.config, "--log-file", "/dev/full", "--bundle", BUNDLE, "console",
                         stdin="call IsTransQueltEnabled\n")
        self.assertEqual(done.stdout.count("acces QueltTools"), 1)
        self.assertEqual(done.stderr.count("acces QueltTools"), 0)

    def test_no_file_takes_the_place_of_a_closed_stream(self):
        log = os.path.join(self.dir, "log")
        arguments = [HOST, "-c", self.config, "-b", BUNDLE, "--log-file", log]
        done = subprocess.run(["sh", "-c", 'exec "$@" >&-', "sh", *arguments, "call", "ToUpper", "answer"],
                              capture_output=True, text=True, timeout=200, check=False)
        self.assert_fails(done, 1, "standard output cannot be written")
        done = subprocess.run(["sh", "-c", 'exec "$@" 2>&-', "sh", *arguments, "unload", "nonsense"], timeout=200, check=False)
        self.assertEqual(done.returncode, 1)
        done = subprocess.run(["sh", "-c", 'exec "$@" <&-', "sh", *arguments, "run", "-"], capture_output=True, text=True,
                              timeout=200, check=False)
        self.assert_fails(done, 1, "stdin: cannot be read")
        with open(log, encoding="ascii") as file:
            self.assertEqual({line.split(": ", 1)[1] for line in file}, {"run successfull!! \n"})


if __name__ == "__main__":
    host_case.main()
