#!/usr/bin/env python3
"""Tests call and time with every operation and with wrong arguments."""
import time

import host_case
from host_case import BUNDLE, HostTest


class Call(HostTest):
    def test_every_operation_of_the_interface_answers(self):
        for arguments, answer in [
            (["GetSvcName"], "result: AsciiUtilService\n"),
            (["IsValid"], "result: 1\n"),
            (["Str2Num", "12abc", "10"], "result: false\nvalue: 12\n"),
            (["Str2Num", "0x1A", "0"], "result: true\nvalue: 26\n"),
            (["IsTransQueltEnabled"], "result: false\n"),
            (["GetAlmCfgValue", "LINK", "RTR", "down", "7"], "result: 0\nvalue: 15\n"),
            (["GetAlmCfgValue", "LINK", "RTR", "down", "8"], "result: 0\nvalue: 0\n"),
            (["ToUpper", "abc-Xy9"], "result: ABC-XY9\n"),
            (["IsContain", "bc", "abc"], "result: true\n"),
            (["IsKeyValueAboveOne", "A", "A=2,B=1"], "result: true\n"),
            (["GetKeyValue", "B", "A=2,B=one"], "result: one\n"),
            (["ParseListMap", "A=1|2,PATH=x-y"], "result: 0\nmap:\n  A:\n    1\n    2\n  PATH:\n    x\n    y\n"),
            (["GetMapList", "A=1|2,B", "A"], "result: 0\nitems:\n  1\n  2\n"),
            (["GetMapList", "A=1|2,B", "B"], "result: 1\nitems:\n"),
            (["SplitStr", "a; b;", ";"], "result: 0\npieces:\n  a\n  b\n  \n"),
            (["WriteDbgLog", "x"], "result: 0\n"),
        ]:
            with self.subTest(arguments=arguments):
                self.assertEqual(self.call(*arguments), answer)

    def test_the_time_stamp_has_its_form(self):
        self.assertRegex(self.call("GetTimeStamp"), r"^result: \d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\n$")

    def test_every_text_function_answers(self):
        for arguments, answer in [
            (["Trim", " a b\t"], "a b"),
            (["StrToUpper", "aB1"], "AB1"),
            (["StrToLower", "aB1"], "ab1"),
            (["Num2Str", "-2147483648"], "-2147483648"),
            (["GetURLEncoding", "a b\\xc3\\xa9"], "a+b%e9"),
            (["GetURLDecoding", "a+b%e9"], "a b\\xe9"),
            (["SetURLDecoding", "50%"], "50%25"),
            (["utf8toiso8859", "\\xc3\\xa9\\xe2\\x82\\xac\\xff"], "\\xe9??"),
        ]:
            with self.subTest(arguments=arguments):
                self.assertEqual(self.call(*arguments), f"result: {answer}\n")

    def test_a_wrong_argument_is_named_and_nothing_is_loaded(self):
        done = self.host("--bundle", BUNDLE, "call", "Str2Num", "1", "ten")
        self.assert_fails(done, 2, "Str2Num: argument 2, base: 'ten' is not an integer")
        self.assertEqual(done.stdout, "")

    def test_a_wrong_number_of_arguments_is_reported_with_the_right_one(self):
        self.assert_fails(self.loaded("call", "ToUpper"), 2, "ToUpper takes 1 argument, not 0: ToUpper text:text")

    def test_an_unknown_operation_says_what_was_meant(self):
        self.assert_fails(self.loaded("call", "touper", "a"), 2, "no operation 'touper'; did you mean ToUpper?")

    def test_an_empty_separator_is_refused_since_the_operation_would_never_end(self):
        self.assert_fails(self.loaded("call", "SplitStr", "a", ""), 2, "separator: '' is empty")

    def test_without_the_bundle_there_is_no_interface_and_no_function(self):
        self.assert_fails(self.host("call", "ToUpper", "a"), 1, "no AsciiUtilInterface is registered")
        self.assert_fails(self.host("call", "Trim", "a"), 1, "no loaded library exports NS_ASCII::Trim")

    def test_a_call_is_timed(self):
        done = self.loaded("time", "1000", "call", "IsTransQueltEnabled")
        self.assertRegex(done.stdout, r"^calls: 1000\nmedian: \d+ ns\nrate: \d+ per second\nlog records: 1000\n$")

    def test_median_and_rate_of_a_timed_call_are_per_call(self):
        start = time.monotonic()
        done = self.loaded("time", "200000", "call", "GetTimeStamp")
        elapsed = (time.monotonic() - start) * 1e9
        median, rate = (int(line.split()[1]) for line in done.stdout.splitlines()[1:3])
        self.assertLess(200000 / 2 * (median - 1), elapsed, "half of the calls take the median or longer")
        self.assertTrue((median - 1) * (rate - 1) < 1e9 < (median + 1) * (rate + 1), done.stdout)

    def test_a_piped_console_shows_answer_out_values_and_records_under_headings(self):
        done = self.loaded("console", stdin="call Str2Num 7 10\ncall WriteDbgLog hello\n")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertRegex(done.stdout, r"^Returned\n  result: true\nOut values\n  value: 7\nLog records\n  none\n"
                                      r"Returned\n  result: 0\nOut values\n  none\nLog records\n  \S+Z \[0\] -:0 -: hello\n$")


if __name__ == "__main__":
    host_case.main()
