#!/usr/bin/env python3
"""Records calls, replays them and checks the report: replay_test.py [TEST]. The programs and libraries come from the
environment: BUNDLE_HOST, BUNDLE, RECORDER, WRONG_BUNDLE, AGENT, SOURCE (the top of the source tree)."""
import json
import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import unittest

SOURCE = pathlib.Path(os.environ["SOURCE"])
CALLS = r"""
call GetSvcName
call IsValid
call Str2Num '12 ' 10
call Str2Num '\x00\x01' 0
call GetTimeStamp
call IsTransQueltEnabled
call GetAlmCfgValue COM BTS LOS 7
call GetAlmCfgValue no such alarm 7
call ToUpper ''
call ToUpper ' "quoted" \x27it\x27 # \\x41 '
call IsContain b abc
call IsKeyValueAboveOne N N=2
call GetKeyValue A 'A=,B=2'
call ParseListMap 'ALM=x|y, PATH=a-b|c'
call GetMapList 'A=x|y,B,C=' A
call GetMapList '' A
call GetMapList '\x2c\x7c\x3d=\x2c|\x7c\x3d|' '\x2c\x7c\x3d'
call SplitStr a,b ,
call WriteDbgLog message
"""


class Replay(unittest.TestCase):
    def setUp(self):
        self.dir = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.config = self.dir / "config"
        shutil.copytree(SOURCE / "examples/config", self.config)
        self.calls = self.dir / "calls.jsonl"

    def command(self, *arguments, bundle="BUNDLE"):
        return [os.environ["BUNDLE_HOST"], "--config-dir", self.config, "--log-file", self.dir / "log", "--bundle",
                os.environ[bundle], *arguments]

    def host(self, *arguments, bundle="BUNDLE", wrong=""):
        return subprocess.run(self.command(*arguments, bundle=bundle), text=True, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, check=False, cwd=SOURCE, env=dict(os.environ, WRONG_OPERATION=wrong))

    def start(self, *arguments):
        process = subprocess.Popen(self.command(*arguments), text=True, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return process

    def record(self, calls=CALLS):
        commands = self.dir / "commands"
        commands.write_text(f"load {os.environ['RECORDER']} --output {self.calls}\n{calls}")
        done = self.host("run", commands)
        self.assertEqual(done.returncode, 0, done.stderr)
        return self.calls

    def replayed(self, *arguments, **options):
        """Rows of the report's table by operation, and the whole report."""
        done = self.host("replay", self.calls, "--json", *arguments, **options)
        report = json.loads(done.stdout)
        return {row["operation"]: row for row in report["operations"]}, report, done

    def test_the_same_bundle_answers_every_call_the_same(self):
        self.record()
        done = self.host("replay", self.calls)
        self.assertEqual(done.stderr, "")
        self.assertEqual(done.returncode, 0)
        table, report, _ = self.replayed()
        self.assertEqual(len(table), 14)
        self.assertEqual((report["calls"], report["different"], report["skipped_lines"]), (19, 0, 0))
        self.assertTrue(report["configuration"]["same"])
        self.assertRegex(report["configuration"]["recorded"], r"^\d+ \d+$")
        self.assertEqual(report["configuration"]["recorded"], report["configuration"]["now"])
        for name, row in table.items():
            uncompared = row["calls"] if name in ("GetTimeStamp", "WriteDbgLog") else 0
            self.assertEqual((row["same"], row["not_compared"]), (row["calls"] - uncompared, uncompared), name)
            self.assertGreaterEqual(row["recorded_ns"], 0)
            self.assertGreaterEqual(row["now_ns"], 0)

    def test_the_recorded_bundle_is_neither_unloaded_nor_reloaded_before_the_recorder(self):
        in_use = "ii_ascii_util is in use: ii_ascii_recorder passes calls on to its interface"
        self.record(f"""unload ii_ascii_util
expect-error '{in_use}'
reload ii_ascii_util
expect-error '{in_use}'
call ToUpper abc
expect ABC
unload ii_ascii_recorder
unload ii_ascii_util
expect 'is unmapped'
""")

    def test_a_wrong_operation_is_found_and_named(self):
        self.record()
        for operation in ("ToUpper", "ParseListMap"):
            table, report, done = self.replayed(bundle="WRONG_BUNDLE", wrong=operation)
            self.assertEqual(done.returncode, 1)
            self.assertEqual({name for name, row in table.items() if row["different"]}, {operation})
            self.assertIn(f"of {report['calls']} calls have another answer", done.stderr)
            self.assertTrue(all(difference["call"].startswith(operation) for difference in report["differences"]))
        self.assertIn("exception: std::__cxx11::basic_string", report["differences"][0]["now"])

    def test_out_values_start_as_they_were_recorded(self):
        record = ('{"op":"%s","in":[%s],"before":[%s],"result":0,"out":[%s],"thread":1,"start":2,"ns":3}\n')
        self.calls.write_text(record % ("SplitStr", '"a",","', '["kept"]', '["kept","a"]') +
                              record % ("GetAlmCfgValue", '"no","such","alarm",7', "5", "0"))
        self.assertEqual(self.replayed("--compare-configuration")[2].returncode, 0)
        for operation in ("SplitStr", "GetAlmCfgValue"):
            table, _, _ = self.replayed("--compare-configuration", bundle="WRONG_BUNDLE", wrong=operation)
            self.assertEqual({name for name, row in table.items() if row["different"]}, {operation})

    def test_a_difference_is_shown_as_call_takes_it(self):
        self.record()
        done = self.host("replay", self.calls, "--operations", "ToUpper", bundle="WRONG_BUNDLE", wrong="ToUpper")
        self.assertIn("record 9, line 10: call ToUpper ''\n  recorded\n    result:\n  now\n    result: \\x0a\n", done.stdout)
        _, report, _ = self.replayed(bundle="WRONG_BUNDLE", wrong="ToUpper")
        commands = self.dir / "again"
        commands.write_text("".join(f"call {difference['call']}\n" for difference in report["differences"]))
        answers = self.host("run", commands).stdout
        self.assertEqual(answers, "".join(difference["recorded"] for difference in report["differences"]))

    def test_every_call_can_be_made_by_hand_again(self):
        self.record()
        text = self.calls.read_text().replace('"result":0', '"result":77').replace('"result":1', '"result":77')
        self.calls.write_text(text.replace('"result":""', '"result":"x"'))
        _, report, _ = self.replayed()
        maps = [difference for difference in report["differences"] if difference["call"].startswith("GetMapList")]
        self.assertEqual(len(maps), 3)
        commands = self.dir / "again"
        commands.write_text("".join(f"call {difference['call']}\n" for difference in report["differences"]))
        self.assertEqual(self.host("run", commands).stdout, "".join(difference["now"] for difference in report["differences"]))

    def test_as_many_differences_are_shown_as_asked_for(self):
        self.record("call ToUpper a\n" * 5)
        done = self.host("replay", self.calls, "--max-differences", "2", bundle="WRONG_BUNDLE", wrong="ToUpper")
        self.assertEqual(done.stdout.count("call ToUpper a"), 2)
        self.assertIn("\n3 more differences\n", done.stdout)
        self.assertRegex(done.stdout, r"\nToUpper +5 +0 +5 +0 ")

    def test_another_configuration_is_reported_first_and_not_compared(self):
        self.record()
        file = self.config / "ii_asciiagent_bundle/AlarmConfig.csv"
        file.write_text("COM\tBTS\tLOS\t7\t4\n")
        done = self.host("replay", self.calls)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertRegex(done.stdout, r"^configuration: recorded with AlarmConfig.csv \d+ \d+, now \d+ 16 \(cksum\); "
                                      r"GetAlmCfgValue is not compared\n")
        table, report, _ = self.replayed()
        self.assertEqual(table["GetAlmCfgValue"]["not_compared"], 2)
        self.assertFalse(report["configuration"]["same"])
        table, _, done = self.replayed("--compare-configuration")
        self.assertEqual((done.returncode, table["GetAlmCfgValue"]["different"]), (1, 1))

    def test_a_file_of_two_recordings_differs_in_configuration_when_one_of_them_does(self):
        self.record("call GetAlmCfgValue COM BTS LOS 7\n")
        head, call = self.calls.read_text().splitlines()[:2]
        current = json.loads(head)["alarm_config"]
        for first, second in (("1 1", current), (current, "1 1")):
            self.calls.write_text("\n".join([head.replace(current, first), call, head.replace(current, second), call, call]))
            table, report, _ = self.replayed()
            self.assertEqual(report["configuration"], {"recorded": "1 1", "now": current, "same": False})
            same = 1 if first == current else 2
            self.assertEqual((table["GetAlmCfgValue"]["same"], table["GetAlmCfgValue"]["not_compared"]), (same, 3 - same))

    def test_a_record_is_numbered_without_other_lines_and_with_those_of_other_operations(self):
        self.calls.write_text("junk\n" * 12 + '{"op":"IsValid","in":[],"result":1,"thread":1,"start":2,"ns":3}\n'
                              '{"op":"ToUpper","in":["a"],"result":"x","thread":1,"start":2,"ns":3}\n')
        done = self.host("replay", self.calls, "--operations", "ToUpper,IsContain")
        self.assertIn("\nrecord 2, line 14: call ToUpper a\n", done.stdout)
        self.assertIn("\n2 more such lines\n", done.stdout)
        self.assertNotIn("IsValid", done.stdout)

    def test_the_durations_are_medians(self):
        record = '{"op":"%s","in":[],"result":%s,"thread":1,"start":2,"ns":%d}\n'
        self.calls.write_text("".join(record % ("IsValid", 1, ns) for ns in (900, 2, 40, 1, 300)) +
                              record % ("GetSvcName", '"AsciiUtilService"', 7))
        table, _, _ = self.replayed("--operations", "GetSvcName,IsValid")
        self.assertEqual((table["IsValid"]["recorded_ns"], table["GetSvcName"]["recorded_ns"]), (40, 7))

    def test_exceptions_are_compared_by_their_class_and_text(self):
        thrown = "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >"
        self.calls.write_text("".join(
            '{"op":"ParseListMap","in":["a"],"threw":{"type":"%s","what":"%s"},"out":[{"x":[]}],"thread":1,"start":2,"ns":3}\n' % pair
            for pair in ((thrown, ""), (thrown, "text"), ("int", ""))))
        _, report, _ = self.replayed(bundle="WRONG_BUNDLE", wrong="ParseListMap")
        self.assertEqual([difference["record"] for difference in report["differences"]], [2, 3])

    def test_a_cut_line_and_a_foreign_one_are_reported_and_the_rest_is_used(self):
        self.record()
        lines = self.calls.read_text().splitlines()
        self.calls.write_text("\n".join(lines[:3] + ["hello"] + lines[3:5] + [lines[5][:20]]))
        done = self.host("replay", self.calls)
        self.assertEqual(done.returncode, 0)
        self.assertIn(f"{self.calls}:4:1: not JSON; the line is skipped\n", done.stdout)
        self.assertIn(f"{self.calls}:7:21: the line is truncated; the line is skipped\n", done.stdout)
        _, report, _ = self.replayed()
        self.assertEqual((report["calls"], report["skipped_lines"]), (4, 2))

    def test_a_file_without_records_is_refused(self):
        for name, text, reason in (("empty", "", ":1:1: the file holds no recorded call"),
                                   ("foreign", "a\nb\n", ":1:1: the file holds no recorded call"),
                                   ("absent", None, ": No such file or directory")):
            file = self.dir / name
            if text is not None:
                file.write_text(text)
            done = self.host("replay", file)
            self.assertEqual(done.returncode, 1)
            self.assertIn(f"bundle_host: {file}{reason}", done.stderr)
        self.assertIn(": is a directory", self.host("replay", self.dir).stderr)

    def test_a_call_that_would_fill_the_memory_is_not_made(self):
        self.calls.write_text('{"op":"SplitStr","in":["a",""],"result":0,"out":[["a"]],"thread":1,"start":2,"ns":3}\n')
        table, report, done = self.replayed()
        self.assertEqual((done.returncode, table["SplitStr"]["different"]), (1, 1))
        self.assertIsNone(table["SplitStr"]["now_ns"])
        self.assertIn("would fill the memory", report["differences"][0]["now"])

    def test_a_recording_is_read_up_to_its_size_at_the_start(self):
        many = self.dir / "many"
        many.write_text('{"op":"ToUpper","in":["abc"],"result":"ABC","thread":1,"start":2,"ns":3}\n' * 20000)
        process = self.start("run", "-")
        process.stdin.write(f"load {os.environ['RECORDER']} --output {self.calls}\nreplay {many}\n")
        process.stdin.flush()
        while not (self.calls.exists() and self.calls.read_text().count('"ABC"') > 100):
            self.assertIsNone(process.poll())
        # Each call of this replay adds a record to the file that it reads.
        out, err = process.communicate(f"replay {self.calls}\n", timeout=500)
        self.assertEqual((process.returncode, err), (0, ""))
        self.assertEqual(out.count("\nToUpper "), 2)

    def test_a_read_that_fails_is_reported(self):
        # This file can be opened, but reading it at 0 fails, where nothing is mapped.
        done = self.host("replay", "/proc/self/mem")
        self.assertEqual((done.returncode, done.stderr),
                         (1, "bundle_host: /proc/self/mem:1:1: cannot be read: Input/output error\n"))

    def test_a_signal_stops_a_replay(self):
        pipe = self.dir / "pipe"
        os.mkfifo(pipe)
        process = self.start("replay", pipe)
        record = '{"op":"ToUpper","in":["abc"],"result":"ABC","thread":1,"start":2,"ns":3}\n' * 1000
        with self.assertRaises(BrokenPipeError), open(pipe, "w", encoding="ascii") as file:  # Waits for the reader.
            process.send_signal(signal.SIGTERM)
            for _ in range(1000):
                file.write(record)
        self.assertEqual(process.communicate()[1], "bundle_host: interrupted by SIGTERM\n")
        self.assertEqual(process.returncode, 143)

    def test_wrong_usage_is_named(self):
        for arguments, reason in ((["f", "--max-differences", "x"], "'x' is not an integer of 0 or more"),
                                  (["f", "--max-differences"], "--max-differences needs a value"),
                                  (["f", "--operations", "Toupper"], "no recorded operation 'Toupper'; did you mean"),
                                  (["f", "--operations", "ToUpper,"], "no recorded operation ''"),
                                  (["f", "g"], "'g' is not an argument of it"),
                                  (["--json"], "a FILE is missing")):
            done = self.host("replay", *arguments)
            self.assertEqual(done.returncode, 2, arguments)
            self.assertIn(reason, done.stderr)

    def test_the_example_agents_feed_is_answered_the_same_by_a_replay(self):
        conf = self.dir / "svc.conf"
        directive = 'dynamic {0} Service_Object * {1}:_make_{0}() "{2}"\n'
        conf.write_text(directive.format("ii_ascii_util", os.environ["BUNDLE"], "") +
                        directive.format("ii_ascii_recorder", os.environ["RECORDER"], f"--output {self.calls}") +
                        directive.format("alarm_agent_example", os.environ["AGENT"],
                                         f"--feed examples/alarm_agent/feed.txt --out {self.dir}/messages"))
        done = subprocess.run([os.environ["BUNDLE_HOST"], "--config-dir", self.config, "--log-file", self.dir / "log",
                               "--svc-conf", conf, "quit"], text=True, stderr=subprocess.PIPE, check=False, cwd=SOURCE)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        _, report, done = self.replayed()
        self.assertEqual((done.returncode, report["different"]), (0, 0), report["differences"])
        self.assertGreater(report["calls"], 100)


if __name__ == "__main__":
    unittest.main()
