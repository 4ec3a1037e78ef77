#!/usr/bin/env python3
"""Tests command files: expect, expect-error, --keep-going, files that run files, calls from a pipe."""
import json
import os
import subprocess

import host_case
from host_case import HOST, HostTest, broken


class Expect(HostTest):
    def script(self, text, *options):
        return self.host(*options, *self.with_bundle("run", "-"), stdin=text)

    def test_a_script_continues_when_the_last_command_printed_the_text(self):
        done = self.script("call Str2Num 12a 10\nexpect 'result: false'\n\n# both lines\nexpect 'value: 12'\nset Done 1\nitems\n")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertIn("Done", done.stdout)

    def test_a_script_ends_with_the_place_and_both_texts_when_it_did_not(self):
        done = self.script("call ToUpper abc\n  expect ABD\nlog\n")
        self.assert_fails(done, 1, "stdin:2:3: expected 'ABD', but the last command printed 'result: ABC'")
        self.assertNotIn("log level", done.stdout)
        self.assert_fails(self.script("set A 1\nexpect A\n"), 1, "stdin:2:1: expected 'A', but the last command printed nothing")

    def test_a_longer_number_or_word_does_not_match(self):
        for printed, expected, holds in [("15", "result: 15", True), ("15", "result: 1", False), ("15", "5", False),
                                         ("a_b", "a", False), ("a-b", "a", True), ("x", "result: x", True), ("15 5", "5", True)]:
            with self.subTest(printed=printed, expected=expected):
                done = self.script(f"call Trim '{printed}'\nexpect '{expected}'\n")
                self.assertEqual(done.returncode, 0 if holds else 1, done)

    def test_a_command_may_fail_when_expect_error_follows(self):
        done = self.script("call Nonsense\n\n# wanted\nexpect-error \"no operation 'Nonsense'\"\nunset absent\n"
                           "expect-error 'there is no item'\nlog\n")
        self.assertEqual((done.returncode, done.stderr, done.stdout), (0, "", "log level: off\n"))

    def test_another_error_or_none_fails(self):
        self.assert_fails(self.script("call Nonsense\nexpect-error 'no wheels'\n"), 1,
                          "stdin:2:1: expected the error 'no wheels', but the last command failed with 'no operation 'Nonsense'")
        self.assert_fails(self.script("log\nexpect-error 'no wheels'\n"), 1,
                          "stdin:2:1: expected the error 'no wheels', but the last command succeeded")

    def test_an_error_that_only_expect_follows_ends_the_script(self):
        self.assert_fails(self.script("call Nonsense\nexpect Nonsense\n"), 1, "stdin:1:6: no operation")
        self.assert_fails(self.script("log\ncall Nonsense\n\0\n"), 1, "stdin:2:6: no operation")

    def test_an_empty_text_is_refused(self):
        self.assert_fails(self.script("log\nexpect ''\n"), 1, "stdin:2:8: expect: '' occurs in every text")

    def test_the_echo_of_a_line_is_not_what_a_command_printed(self):
        self.assert_fails(self.script("log\nexpect nowhere\n", "--echo"), 1, "expected 'nowhere'")

    def test_keep_going_reports_each_failing_command_and_counts_them(self):
        done = self.script("nonsense\nlog\n\nset A x\nunset B\nexpect-error 'no item'\nlog\nnonsense\n", "--keep-going")
        self.assertEqual(done.stdout, "log level: off\nlog level: off\n")
        self.assertEqual([line.split("; ")[0] for line in done.stderr.splitlines()],
                         ["bundle_host: stdin:1:1: no command 'nonsense'",
                          "bundle_host: stdin:4:7: set: 'x' is not an integer from -2147483648 to 2147483647",
                          "bundle_host: stdin:8:1: no command 'nonsense'",
                          "bundle_host: stdin: 3 of 7 commands failed"])
        self.assertEqual(done.returncode, 1)

    def test_keep_going_reports_a_problem_after_the_output_of_its_command(self):
        file = self.write("script", f"load {broken('fini_fails')}\nunload broken_fini_fails\n")
        done = subprocess.run([HOST, "--keep-going", "run", file], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              timeout=200, check=False)
        self.assertEqual([line.split(" ")[0] for line in done.stdout.splitlines()],
                         ["loaded", "unloaded", "bundle_host:", "bundle_host:"])

    def test_an_error_is_that_of_the_last_command_only(self):
        done = self.script("unset A\nexpect-error 'no item'\nlog\nexpect-error 'no item'\n")
        self.assert_fails(done, 1, "stdin:4:1: expected the error 'no item', but the last command succeeded")

    def test_a_console_can_follow_one_whose_commands_failed(self):
        file = self.write("consoles", "console\nconsole\nlog\n")
        done = self.host("--keep-going", "run", file, stdin="nonsense\n")
        self.assertIn("stdin:1:1: no command 'nonsense'", done.stderr)
        self.assertNotIn("is running already", done.stderr)
        self.assertEqual(done.stdout, "log level: 0\n")

    def test_an_unknown_bundle_is_reported_with_its_column(self):
        for command in ("init", "reload", "unload"):
            self.assert_fails(self.script(f"{command} absent\n"), 1, f"stdin:1:{len(command) + 2}: no bundle 'absent' is loaded")

    def test_keep_going_succeeds_when_nothing_failed(self):
        done = self.script("log\n", "--keep-going")
        self.assertEqual((done.returncode, done.stderr), (0, ""))


class Run(HostTest):
    def test_a_file_may_run_another(self):
        inner = self.write("inner", "set Inner 1\nnonsense\n")
        outer = self.write("outer", f"run '{inner}'\n")
        self.assert_fails(self.host("run", outer), 1, f"{outer}:1:1: {inner}:2:1: no command 'nonsense'")

    def test_a_file_that_runs_itself_is_stopped(self):
        path = os.path.join(self.dir, "self")
        self.write("self", f"run {path}\n")
        self.assert_fails(self.host("run", path), 1, "would be nested deeper than 16 files; does it run itself?")

    def test_files_one_after_the_other_are_not_nested(self):
        inner = self.write("inner", "log\n")
        done = self.host("run", self.write("outer", f"run {inner}\n" * 20))
        self.assertEqual((done.returncode, done.stdout), (0, "log level: 0\n" * 20))

    def test_a_file_that_runs_standard_input_takes_up_all_of_it(self):
        done = self.host("run", "-", stdin="log\nrun -\nset A 1\nitems\n")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertIn("A     1", done.stdout)

    def test_the_column_is_that_of_an_indented_failing_command(self):
        self.assert_fails(self.host("run", "-", stdin=" \t nonsense\n"), 1, "stdin:1:4: no command 'nonsense'")

    def test_a_second_console_may_follow_the_first(self):
        done = self.host("run", self.write("consoles", "console\nconsole\n"), stdin="log\n")
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "log level: 0\n", ""))

    def test_a_console_within_a_console_is_refused(self):
        self.assert_fails(self.host("console", stdin="console\n"), 1, "stdin:1:1: console: a console is running already")


class CallsFromAPipe(HostTest):
    def test_each_line_is_a_call(self):
        done = self.loaded("call", "-", stdin="ToUpper abc\n\n# none\nStr2Num 12a 10\n")
        self.assertEqual((done.returncode, done.stdout), (0, "result: ABC\nresult: false\nvalue: 12\n"))

    def test_each_call_is_a_line_of_json_with_numbers_as_numbers(self):
        calls = ["IsValid", "Str2Num 12a 10", "ToUpper 'a\\xe9\\x0a\"'", "GetMapList 'A=1|2,B' A", "ParseListMap A=1|2,B=",
                 "GetAlmCfgValue LINK RTR down 7"]
        done = self.loaded("call", "--json", "-", stdin="\n".join(calls))
        self.assertEqual([json.loads(line) for line in done.stdout.splitlines()],
                         [{"result": 1}, {"result": False, "value": 12}, {"result": "A\\xe9\\x0a\""},
                          {"result": 0, "items": ["1", "2"]}, {"result": 0, "map": {"A": ["1", "2"], "B": [""]}},
                          {"result": 0, "value": 15}])

    def test_one_call_on_the_command_line_is_json_too(self):
        self.assertEqual(self.call("--json", "GetKeyValue", "B", "A=2,B=7"), '{"result":"7"}\n')

    def test_a_wrong_call_ends_it_with_its_place(self):
        done = self.loaded("call", "-", stdin="IsValid\nToUpper a b\nIsValid\n")
        self.assert_fails(done, 1, "stdin:2:1: ToUpper takes 1 argument, not 2")
        self.assert_fails(self.loaded("call", "--json", "-", stdin="Str2Num 1  x\n"), 1, "stdin:1:12: Str2Num: argument 2, base")
        self.assertEqual(done.stdout, "result: 1\n")

    def test_expect_error_does_not_excuse_the_call_before_it(self):
        done = self.loaded("call", "-", stdin="Nonsense\nexpect-error Nonsense\n")
        self.assert_fails(done, 1, "stdin:1:1: no operation 'Nonsense'")

    def test_json_on_the_console_is_one_line_too(self):
        self.assertEqual(self.loaded("console", stdin="call --json ToUpper a\n").stdout, '{"result":"A"}\n')

    def test_reading_calls_from_a_line_that_reads_calls_has_a_limit(self):
        self.assert_fails(self.loaded("call", "-", stdin="-\n" * 20), 1, "would be nested deeper than 16 files")

    def test_a_missing_operation_is_reported(self):
        self.assert_fails(self.loaded("call", "--json"), 2, "call: an operation is missing")

    def test_the_answer_comes_before_the_next_call_is_needed(self):
        with subprocess.Popen([HOST, *self.with_bundle("call", "-")], text=True, stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE) as process:
            for text in ["a", "b"]:
                process.stdin.write(f"ToUpper {text}\n")
                process.stdin.flush()
                self.assertEqual(process.stdout.readline(), f"result: {text.upper()}\n")
            process.stdin.close()
        self.assertEqual(process.returncode, 0)

    def test_an_escape_without_two_digits_is_refused(self):
        for text in ["\\xZZ", "\\x4", "a\\x", "\\xg0"]:
            self.assert_fails(self.loaded("call", "ToUpper", text), 2, "is not a byte; write \\x and two hexadecimal digits")
        self.assert_fails(self.loaded("call", "ParseListMap", "A=\\xZZ"), 2, "text: '\\xZZ' is not a byte")
        self.assert_fails(self.loaded("call", "GetMapList", "A=\\xZZ", "A"), 2, "map: '\\xZZ' is not a byte")
        self.assertEqual(self.call("ToUpper", "a\\x5cx41\\y"), "result: A\\x5cX41\\x5cY\n")

    def test_time_makes_as_many_calls_as_it_says(self):
        done = self.loaded("time", "2001", "call", "IsTransQueltEnabled")
        self.assertIn("log records: 2001\n", done.stdout)


class Files(HostTest):
    def test_the_commands_of_a_file_run_in_order(self):
        file = self.write("commands", "# comment\nset A 7\n\nitems\ncall ToUpper 'a  \"b'\nquit\nnonsense\n")
        done = self.loaded("run", file)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(done.stdout, "ITEM          VALUE  READABLE\nA             7      yes\n"
                                      "IsTransQuelt  0      yes\nresult: A  \"B\n")

    def test_a_file_stops_at_the_first_bad_line_and_names_it(self):
        file = self.write("commands", "call IsValid\n\ncall Nonsense\ncall IsValid\n")
        done = self.loaded("run", file)
        self.assertEqual(done.stdout, "result: 1\n")
        self.assert_fails(done, 1, f"{file}:3:6: no operation 'Nonsense'")

    def test_a_quote_that_is_not_closed_is_reported_with_line_and_column(self):
        self.assert_fails(self.loaded("run", "-", stdin="\ncall ToUpper 'a\n"), 1, "stdin:2:14: the quote ' is not closed")

    def test_a_file_of_another_kind_is_reported(self):
        for text, message in [
            ("\xef\xbb\xbfcall IsValid\n", ":1:1: a byte order mark; save the file without one"),
            ("; items\n[items]\n", ":1:1: a comment starts with '#', not with ';'"),
            ("\n [items]\nA=1\n", ":2:2: a section of an INI file is not a command; items are read from config_items.ini"),
        ]:
            with self.subTest(text=text):
                file = self.write("commands", text)
                self.assert_fails(self.loaded("run", file), 1, file + message)

    def test_a_directory_is_not_a_file_of_commands_or_directives(self):
        for arguments in (["run", self.dir], ["--svc-conf", self.dir, "bundles"]):
            with self.subTest(arguments=arguments):
                self.assert_fails(self.host(*arguments), 1, f"{self.dir}: is a directory; a file is needed")

    def test_a_line_without_an_end_is_reported_and_not_read_into_memory(self):
        path = self.write("endless", "")
        os.truncate(path, 1 << 40)
        for arguments in (["run", path], ["--svc-conf", path, "bundles"], ["run", "/dev/zero"]):
            with self.subTest(arguments=arguments):
                self.assert_fails(self.host(*arguments), 1, ":1:1: a NUL byte; expected a text file")
        os.remove(self.config + "/config_items.ini")
        os.symlink(path, self.config + "/config_items.ini")
        self.assert_fails(self.loaded("items"), 1, "config_items.ini:1:1: a NUL byte")
        with subprocess.Popen(["yes", "x" * 1000], stdout=subprocess.PIPE) as letters, \
             subprocess.Popen(["tr", "-d", "\\n"], stdin=letters.stdout, stdout=subprocess.PIPE) as endless:
            letters.stdout.close()
            done = subprocess.run([HOST, "run", "-"], stdin=endless.stdout, capture_output=True, text=True, timeout=200, check=False)
            endless.stdout.close()
        self.assert_fails(done, 1, "stdin:1:16777217: the line is longer than 16 MiB")

    def test_a_last_line_needs_no_line_end(self):
        self.assertEqual(self.loaded("run", "-", stdin="\nlog\nlog").stdout, "log level: off\nlog level: off\n")
        self.assertEqual(self.loaded("run", "-").stdout, "")

    def test_a_line_with_control_characters_is_reported_in_one_plain_line(self):
        self.assert_fails(self.loaded("run", "-", stdin="\x1b[31mred\n"), 1, "stdin:1:1: no command '\\x1b[31mred'")
        self.assert_fails(self.loaded("run", "-", stdin="set a\0b 1\n"), 1, "stdin:1:6: a NUL byte")
        self.assert_fails(self.host("--log-level", "a\nb", "help"), 2, "'a\\x0ab' is not a log level")

    def test_a_huge_word_is_reported_in_a_bounded_line(self):
        done = self.loaded("run", "-", stdin="x" * 5_000_000 + "\n")
        self.assert_fails(done, 1, "stdin:1:1: no command 'xxx")
        self.assertLess(len(done.stderr), 2100)

    def test_no_name_is_suggested_for_a_very_long_word(self):
        done = self.loaded("run", "-", stdin=f"set {'a' * 40_000} 1\nunset {'b' * 40_001}\n")
        self.assert_fails(done, 1, "there is no item 'bbb")
        self.assertIn("'items' lists them", done.stderr)

    def test_standard_input_that_cannot_be_read_is_reported(self):
        directory = os.open(self.dir, os.O_RDONLY)
        self.addCleanup(os.close, directory)
        done = subprocess.run([HOST, "run", "-"], stdin=directory, capture_output=True, text=True, timeout=200, check=False)
        self.assert_fails(done, 1, "stdin: cannot be read")

    def test_a_piped_console_stops_at_the_first_bad_line(self):
        done = self.loaded("console", stdin="log\nunlod ii_ascii_util\nlog\n")
        self.assertEqual(done.stdout, "log level: off\n")
        self.assert_fails(done, 1, "stdin:2:1: no command 'unlod'; did you mean unload?")

    def test_a_wrong_argument_has_its_own_column(self):
        for line, column, reason in [
            ("  call Str2Num '1 2' ten", 22, "Str2Num: argument 2, base: 'ten' is not an integer"),
            ("time 5 call Str2Num 1 ten", 23, "Str2Num: argument 2, base: 'ten' is not an integer"),
            ("call  touper a", 7, "no operation 'touper'; did you mean ToUpper?"),
            ("time 5 call Trim", 13, "Trim takes 1 argument, not 0"),
            ("time x call Trim a", 6, "'x' is not a number of repeats"),
            ("time 5 run x", 8, "'run' cannot be timed"),
            ("set A b", 7, "'b' is not an integer"),
            ("log  7", 6, "'7' is not a log level"),
            ("items -json", 7, "'-json' is not an argument of a listing"),
            ("help nonsense", 6, "no command 'nonsense'"),
            ("unset  absent", 8, "there is no item 'absent'"),
            ("unload absent", 8, "no bundle 'absent' is loaded"),
            ("  set A", 3, "set takes 2 arguments, not 1"),
        ]:
            with self.subTest(line=line):
                done = self.host("run", "-", stdin=f"\n{line}\n")
                self.assert_fails(done, 1, f"stdin:2:{column}: ")
                self.assertIn(reason, done.stderr)


if __name__ == "__main__":
    host_case.main()
