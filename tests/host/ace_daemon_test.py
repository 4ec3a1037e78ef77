#!/usr/bin/env python3
"""Tests the platform in ACE's own daemon, which runs the example agent on it as bundle_host does.

Usage: ace_daemon_test.py DAEMON BUNDLE_HOST LIBBUNDLE_HOST LIBII_ASCII_UTIL LIBALARM_AGENT_EXAMPLE SOURCE_DIRECTORY
"""
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

LAST_MESSAGE = "ORDER DOES NOT MATTER"


def without_times(text):
    return sorted(re.sub(r"^\S+", "TIME", line) for line in text.splitlines())


class AceDaemon(unittest.TestCase):
    def setUp(self):
        self.dir = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.dir)

    def path(self, name):
        return os.path.join(self.dir, name)

    def read(self, name):
        with open(self.path(name), encoding="utf-8") as file:
            return file.read()

    def svc_conf(self, *directives):
        with open(self.path("svc.conf"), "w", encoding="utf-8") as file:
            file.write("\n".join(directives) + "\n")
        return self.path("svc.conf")

    def start(self, *directives):
        with open(self.path("out"), "wb") as out, open(self.path("err"), "wb") as err:
            return subprocess.Popen([DAEMON, "-f", self.svc_conf(*directives)], stdout=out, stderr=err, cwd=SOURCE)

    def wait_for(self, what, is_there):
        deadline = time.monotonic() + 100
        while not is_there():
            self.assertLess(time.monotonic(), deadline, f"{what} did not appear")
            time.sleep(0.05)

    def stop(self, daemon):
        daemon.send_signal(signal.SIGINT)
        return daemon.wait(timeout=200)

    def test_the_example_agent_writes_the_messages_and_the_log_that_it_writes_in_bundle_host(self):
        there = subprocess.run([BUNDLE_HOST, "--config-dir", "examples/config", "--log-file", self.path("expected"), "--svc-conf",
                                self.svc_conf(UTIL, AGENT), "services"],
                               capture_output=True, text=True, timeout=200, check=True, cwd=SOURCE)
        messages = [line for line in there.stdout.splitlines() if re.match(r"\d{4}-\d\d-\d\dT", line)]
        self.assertIn("CRITICAL", " ".join(messages))
        daemon = self.start(PLATFORM % f"--config-dir examples/config --log-file {self.path('log')}", UTIL, AGENT)
        self.addCleanup(daemon.kill)
        self.wait_for("the last message", lambda: LAST_MESSAGE in self.read("out"))
        daemon.send_signal(signal.SIGHUP)
        time.sleep(0.5)
        self.assertIsNone(daemon.poll(), "the daemon ended at SIGHUP")
        self.assertEqual(self.stop(daemon), 0)
        self.assertEqual(without_times(self.read("out")), without_times("\n".join(messages)))
        self.assertEqual(without_times(self.read("log")), without_times(self.read("expected")))
        self.assertEqual(self.read("err"), "")

    def test_a_wrong_option_or_directory_is_one_line_in_the_daemons_log(self):
        for options, problem in [
            ("--config-dir /nonexistent", "configuration directory /nonexistent/: No such file or directory"),
            ("--config-dri x", "no option '--config-dri'; did you mean --config-dir?"),
            ("--config-dir examples/config --log-level 9", "'9' is not a log level; there are 0, 1, 2 and off"),
        ]:
            with self.subTest(options=options):
                daemon = self.start(PLATFORM % options)
                self.addCleanup(daemon.kill)
                self.wait_for("the problem", lambda: "bundle_platform: " in self.read("err"))
                self.stop(daemon)
                lines = [line for line in self.read("err").splitlines() if "bundle_platform: " in line]
                self.assertEqual(len(lines), 1, lines)
                self.assertIn("bundle_platform: " + problem, lines[0])


if __name__ == "__main__":
    DAEMON, BUNDLE_HOST, LIBBUNDLE_HOST, LIBII_ASCII_UTIL, LIBAGENT, SOURCE = sys.argv[1:7]
    PLATFORM = f"dynamic bundle_platform Service_Object * {LIBBUNDLE_HOST}:_make_bundle_platform() \"%s\""
    UTIL = f"dynamic ii_ascii_util Service_Object * {LIBII_ASCII_UTIL}:_make_ii_ascii_util() \"\""
    AGENT = (f"dynamic alarm_agent_example Service_Object * {LIBAGENT}:_make_alarm_agent_example() "
             "\"--feed examples/alarm_agent/feed.txt --workers 2\"")
    unittest.main(argv=sys.argv[:1] + sys.argv[7:])
