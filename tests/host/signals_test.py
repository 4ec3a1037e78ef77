#!/usr/bin/env python3
"""Tests signals: the first stops the command and unloads everything in order, a second one ends the process at once."""
import os
import pathlib
import signal
import subprocess

import host_case
from host_case import BUNDLE, HOST, HostTest, broken


def has_child(pid):
    """Whether a process has `pid` as its parent."""
    for status in pathlib.Path("/proc").glob("[0-9]*/stat"):
        try:
            if int(status.read_text(encoding="latin-1").rpartition(")")[2].split()[1]) == pid:
                return True
        except OSError:
            continue  # The process has ended.
    return False


class Signals(HostTest):
    def start(self, *arguments, **options):
        process = subprocess.Popen([HOST, *arguments], text=True, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, **options)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return process

    def end(self, process):
        out, err = process.communicate(timeout=200)
        return process.returncode, out, err

    def wait_for_input(self, process):
        """Makes the script run a command, after which it waits for the next one."""
        process.stdin.write("log\n")
        process.stdin.flush()
        self.assertEqual(process.stdout.readline(), "log level: 0\n")

    def test_a_waiting_script_ends_and_unloads_the_last_loaded_bundle_first(self):
        for number, name in [(signal.SIGTERM, "SIGTERM"), (signal.SIGHUP, "SIGHUP"), (signal.SIGINT, "SIGINT")]:
            with self.subTest(name=name):
                process = self.start("-b", broken("fini_fails"), "-b", broken("fini_throws"), "run", "-")
                self.wait_for_input(process)
                process.send_signal(number)
                code, out, err = self.end(process)
                self.assertEqual((code, out), (128 + number, ""))
                self.assertEqual([line.split(" (")[0] for line in err.splitlines()],
                                 ["bundle_host: broken_fini_throws: fini threw: no brakes",
                                  "bundle_host: broken_fini_fails: fini returned -1",
                                  f"bundle_host: interrupted by {name}"])

    def test_a_long_command_is_stopped_and_the_script_with_it(self):
        log = self.write("log", "")
        process = self.start("-c", self.config, "--log-file", log, "-b", BUNDLE, "run", "-")
        process.stdin.write("log\ntime 100000000 call WriteDbgLog started\nlog\n")
        process.stdin.flush()
        self.assertEqual(process.stdout.readline(), "log level: 0\n")
        while "started" not in pathlib.Path(log).read_text(encoding="ascii"):
            self.assertIsNone(process.poll())
        process.send_signal(signal.SIGTERM)
        code, out, err = self.end(process)
        self.assertEqual((code, out, err), (143, "", "bundle_host: stdin:2:1: interrupted by SIGTERM\n"))

    def test_keep_going_stops_after_a_signal(self):
        process = self.start("--keep-going", "run", "-")
        process.stdin.write("nonsense\n")
        self.wait_for_input(process)
        process.send_signal(signal.SIGINT)
        code, out, err = self.end(process)
        self.assertEqual((code, out), (130, ""))
        self.assertEqual(err.splitlines()[1:], ["bundle_host: interrupted by SIGINT"])

    def test_a_second_signal_ends_the_process_at_once(self):
        for first, second in [(signal.SIGTERM, signal.SIGTERM), (signal.SIGINT, signal.SIGINT), (signal.SIGHUP, signal.SIGTERM)]:
            with self.subTest(first=first, second=second):
                process = self.start("load", broken("init_hangs"))
                self.assertEqual(process.stdout.readline(), "init begins\n")
                process.send_signal(first)
                while self.is_pending(process, first):
                    pass
                self.assertIsNone(process.poll())
                process.send_signal(second)
                self.assertEqual(process.wait(timeout=200), -second)

    def test_a_command_that_ends_after_the_signal_is_the_interrupted_one(self):
        script = self.write("script", f"load {broken('init_hangs')}\nlog\n")
        process = self.start("run", script)
        self.assertEqual(process.stdout.readline(), "init begins\n")
        process.send_signal(signal.SIGINT)
        while self.is_pending(process, signal.SIGINT):
            pass
        code, _, err = self.end(process)  # Ends the bundle's standard input.
        self.assertEqual((code, err.splitlines()[-1]), (130, f"bundle_host: {script}:1:1: interrupted by SIGINT"))

    def test_sigterm_after_an_interrupt_is_a_first_one(self):
        process = self.start("load", broken("init_hangs"))
        self.assertEqual(process.stdout.readline(), "init begins\n")
        for number in (signal.SIGINT, signal.SIGTERM):
            process.send_signal(number)
            while self.is_pending(process, number):
                pass
        self.assertEqual(self.end(process)[0], 143)

    @staticmethod
    def is_pending(process, number):
        with open(f"/proc/{process.pid}/status", encoding="ascii") as file:
            fields = dict(line.split(":", 1) for line in file)
        pending = int(fields["ShdPnd"], 16) | int(fields["SigPnd"], 16)
        return pending >> (number - 1) & 1 == 1

    def test_a_signal_during_the_last_fini_is_in_the_exit_code(self):
        done = self.host("-b", broken("fini_raises"), "quit")
        self.assert_fails(done, 143, "bundle_host: interrupted by SIGTERM")

    def test_a_signal_that_is_ignored_from_the_start_stays_ignored(self):
        process = self.start("run", "-", preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
        self.wait_for_input(process)
        process.send_signal(signal.SIGHUP)
        self.wait_for_input(process)
        self.assertEqual(self.end(process), (0, "", ""))

    def test_part_of_a_line_is_not_run(self):
        process = self.start("run", "-")
        self.wait_for_input(process)
        process.stdin.write("set A 1\nlog 2\nlog\nlog 1")
        process.stdin.flush()
        self.assertEqual(process.stdout.readline(), "log level: 2\n")
        process.send_signal(signal.SIGTERM)
        self.assertEqual(self.end(process), (143, "", "bundle_host: stdin:5:1: interrupted by SIGTERM\n"))

    def test_a_command_that_fails_by_the_signal_ends_with_the_signals_exit_code(self):
        process = self.start("-b", broken("constructor_hangs"), "bundles", start_new_session=True)
        while not has_child(process.pid):
            self.assertIsNone(process.poll())
        os.killpg(process.pid, signal.SIGINT)  # As Ctrl-C does: also to the child that loads the library.
        code, out, err = self.end(process)
        self.assertEqual((code, out), (130, ""))
        self.assertEqual(err, f"bundle_host: {broken('constructor_hangs')}: cannot be loaded: the process that tries it ends by SIGINT\n")

    def test_a_signal_while_bundles_are_loaded_keeps_the_next_from_loading(self):
        # A read of the bundle continues after the signal.
        process = self.start("-b", broken("init_hangs"), "-b", "/none.so", "bundles")
        self.assertEqual(process.stdout.readline(), "init begins\n")
        process.send_signal(signal.SIGTERM)
        self.assertEqual(self.end(process), (143, "", "bundle_host: interrupted by SIGTERM\n"))


if __name__ == "__main__":
    host_case.main()
