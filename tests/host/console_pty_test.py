#!/usr/bin/env python3
"""Tests the console at a terminal: sends keys through a pseudo-terminal and reads the screen.

Usage: console_pty_test.py BUNDLE_HOST LIBII_ASCII_UTIL DIRECTORY_OF_BROKEN_BUNDLES
"""
import os
import pty
import re
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import termios
import time
import unittest

PROMPT = "bundle_host> "
DEADLINE = 100.0


class Terminal:
    """A console on a pseudo-terminal. Waits for texts, never for times."""

    def __init__(self, arguments, state_dir, environment):
        self.screen = ""
        self.exit_code = None
        self.pid, self.fd = pty.fork()
        if self.pid == 0:
            os.environ.update({"TERM": "vt100", "XDG_STATE_HOME": state_dir, **environment})
            os.environ.pop("BUNDLE_HOST_CONFIG_DIR", None)
            os.execv(arguments[0], arguments)

    def type(self, keys):
        os.write(self.fd, keys.encode())

    def wait_for(self, text):
        """Waits for `text`; returns the output up to its end and removes that from `screen`."""
        deadline = time.monotonic() + DEADLINE
        while text not in self._plain():
            if not self._read(deadline):
                raise AssertionError(f"waited for {text!r}, saw {self._plain()!r}")
        plain = self._plain()
        end = plain.index(text) + len(text)
        self.screen = plain[end:]
        return plain[:end]

    def wait_for_lines(self):
        """Waits until a command reads lines: until the editor has restored the terminal's mode."""
        deadline = time.monotonic() + DEADLINE
        while not termios.tcgetattr(self.fd)[3] & termios.ICANON:
            if time.monotonic() >= deadline:
                raise AssertionError(f"no command reads lines, saw {self._plain()!r}")
            self._read(time.monotonic() + 0.01)

    def run(self, line):
        """Types a command; returns its output, up to the next prompt."""
        self.type(line + "\r")
        self.wait_for("\r\n")
        return self.wait_for(PROMPT)[: -len(PROMPT)]

    def wait_for_end(self):
        deadline = time.monotonic() + DEADLINE
        while self._read(deadline):
            pass
        if time.monotonic() >= deadline:
            raise AssertionError(f"the console did not end, saw {self._plain()!r}")
        _, status = os.waitpid(self.pid, 0)
        self.exit_code = os.waitstatus_to_exitcode(status)
        return self.exit_code

    def close(self):
        os.close(self.fd)
        if self.exit_code is None:
            os.kill(self.pid, 9)
            os.waitpid(self.pid, 0)

    def _plain(self):
        return re.sub(r"\x1b\[[0-9;]*[A-Za-z]|\x1b[()][A-Z0-9]|\x07|\x0f", "", self.screen)

    def _read(self, deadline):
        ready, _, _ = select.select([self.fd], [], [], max(0.0, deadline - time.monotonic()))
        if not ready:
            return False
        try:
            data = os.read(self.fd, 65536)
        except OSError:  # The other end is closed.
            return False
        self.screen += data.decode(errors="replace")
        return bool(data)


class ConsoleAtATerminal(unittest.TestCase):
    def setUp(self):
        self.state_dir = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.state_dir)

    def start(self, *options, environment=None):
        terminal = Terminal([HOST, "--log-file", "/dev/null", *options, "console"], self.state_dir, environment or {})
        self.addCleanup(terminal.close)
        terminal.wait_for(PROMPT)
        return terminal

    def start_with_bundle(self):
        config_dir = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, config_dir)
        return self.start("--config-dir", config_dir, "--bundle", BUNDLE)

    def test_tab_completes_a_command_and_adds_a_blank(self):
        terminal = self.start()
        terminal.type("hel\tlog\r")
        self.assertIn("log [LEVEL]\r\n  show or set the lowest level", terminal.wait_for(PROMPT))

    def test_tab_completes_an_operation_of_a_call(self):
        terminal = self.start_with_bundle()
        terminal.type("call GetSv\t\r")
        self.assertIn("result: AsciiUtilService", terminal.wait_for(PROMPT))

    def test_tab_completes_the_name_of_a_loaded_bundle(self):
        terminal = self.start_with_bundle()
        terminal.type("unload ii\t\r")
        self.assertRegex(terminal.wait_for(PROMPT), r"unloaded ii_ascii_util; .*libii_ascii_util.so is unmapped")

    def test_tab_completes_the_name_of_an_item(self):
        terminal = self.start()
        terminal.run("set IsTransQuelt 7")
        terminal.type("unset IsT\t\r")
        terminal.wait_for(PROMPT)
        self.assertNotIn("IsTransQuelt", terminal.run("items"))

    def test_tab_lists_the_candidates_when_there_are_several(self):
        terminal = self.start()
        terminal.type("call Get\t")
        listed = terminal.wait_for(PROMPT)
        self.assertRegex(listed, r"GetAlmCfgValue  GetKeyValue  GetMapList  GetSvcName  GetTimeStamp")

    def test_tab_leaves_out_names_that_need_escapes(self):
        directory = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, directory)
        for name in ("a b.so", "a\x1b[31m.so", "a'.so", "a\xe9.so", "afile.so", "agate.so"):
            with open(os.path.join(directory, name), "w", encoding="ascii"):
                pass
        terminal = self.start()
        terminal.type(f"load {directory}/a\t")
        self.assertIn(f"{directory}/afile.so  {directory}/agate.so\r\n", terminal.wait_for(PROMPT))
        terminal.type("f\t\r")
        self.assertIn(f"{directory}/afile.so: cannot be loaded", terminal.wait_for(PROMPT))

    def test_tab_continues_into_a_directory(self):
        directory = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, directory)
        os.mkdir(os.path.join(directory, "sub"))
        with open(os.path.join(directory, "sub", "afile.so"), "w", encoding="ascii"):
            pass
        terminal = self.start()
        terminal.type(f"load {directory}/s\ta\t\r")
        self.assertIn(f"{directory}/sub/afile.so: cannot be loaded", terminal.wait_for(PROMPT))

    def test_a_repeated_line_is_in_the_history_once(self):
        terminal = self.start()
        for line in ["unset Nothing", "log", "log"]:
            terminal.run(line)
        terminal.type("\x1b[A\x1b[A\r")
        self.assertIn("there is no item 'Nothing'", terminal.wait_for(PROMPT))

    def test_a_blank_line_is_not_in_the_history(self):
        terminal = self.start()
        terminal.run("log")
        terminal.run("  ")
        terminal.type("\x1b[A\r")
        self.assertIn("log level: 0", terminal.wait_for(PROMPT))

    def test_the_history_keeps_the_last_thousand_lines(self):
        directory = os.path.join(self.state_dir, "bundle_host")
        os.makedirs(directory)
        with open(os.path.join(directory, "history"), "w", encoding="ascii") as file:
            file.write("_HiStOrY_V2_\n" + "".join(f"line{number}\n" for number in range(1500)))
        terminal = self.start()
        terminal.run("log")
        with open(os.path.join(directory, "history"), encoding="ascii") as file:
            lines = file.read().splitlines()
        self.assertEqual(lines[1:], [f"line{number}" for number in range(501, 1500)] + ["log"])

    def test_a_relative_state_directory_is_ignored(self):
        home = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, home)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(home)
        terminal = self.start(environment={"XDG_STATE_HOME": "relative", "HOME": home})
        terminal.run("log")
        terminal.type("\x04")
        terminal.wait_for_end()
        self.assertTrue(os.path.isfile(os.path.join(home, ".local/state/bundle_host/history")))
        self.assertFalse(os.path.exists("relative"))

    def test_output_to_a_file_needs_no_editor(self):
        controller, terminal = pty.openpty()
        self.addCleanup(os.close, controller)
        process = subprocess.Popen([HOST, "console"], stdin=terminal, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        os.close(terminal)
        os.write(controller, b"log\n\x04")
        self.assertEqual(process.communicate(timeout=DEADLINE), ("log level: 0\n", ""))

    def test_a_wrong_argument_has_its_column(self):
        terminal = self.start()
        self.assertIn("column 7: set: 'b' is not an integer", terminal.run("set A b"))

    def test_ctrl_c_abandons_the_line_and_the_console_continues(self):
        terminal = self.start()
        terminal.type("set Gone 1\x03")
        terminal.wait_for("^C")
        terminal.wait_for(PROMPT)
        self.assertNotIn("Gone", terminal.run("items"))

    def test_ctrl_c_on_an_empty_line_leaves_the_console_running(self):
        terminal = self.start()
        terminal.type("\x03")
        terminal.wait_for("^C")
        terminal.wait_for(PROMPT)
        self.assertIn("log level: 0", terminal.run("log"))

    def test_standard_input_is_read_again_after_its_end(self):
        terminal = self.start()
        terminal.type("run -\r")
        terminal.wait_for_lines()
        terminal.type("log\n")
        terminal.wait_for("log level: 0")
        terminal.type("\x04")
        terminal.wait_for(PROMPT)
        terminal.type("run -\r")
        terminal.wait_for_lines()
        terminal.type("nonsense\nlog\n")
        terminal.wait_for("stdin:1:1: no command 'nonsense'")

    def test_sigterm_during_a_command_ends_the_console(self):
        terminal = self.start()
        terminal.type(f"load {FIXTURES}/libbroken_init_hangs.so\r")
        terminal.wait_for("init begins")
        os.kill(terminal.pid, signal.SIGTERM)
        terminal.type("\x04")  # The bundle's init continues when its standard input ends.
        self.assertEqual(terminal.wait_for_end(), 128 + signal.SIGTERM)

    def test_ctrl_d_on_an_empty_line_leaves_with_success(self):
        terminal = self.start_with_bundle()
        terminal.type("\x04")
        self.assertEqual(terminal.wait_for_end(), 0)

    def test_quit_leaves_with_success(self):
        terminal = self.start()
        terminal.type("quit\r")
        self.assertEqual(terminal.wait_for_end(), 0)

    def test_a_wrong_command_says_what_was_meant_and_the_console_continues(self):
        terminal = self.start()
        self.assertIn("no command 'bundels'; did you mean bundles?", terminal.run("bundels"))
        self.assertIn("log level: 0", terminal.run("log"))

    def test_the_arrow_key_brings_back_a_line_of_the_run_before(self):
        first = self.start()
        first.run("set Kept 41")
        first.type("\x04")
        first.wait_for_end()
        second = self.start()
        self.assertNotIn("Kept", second.run("items"))
        second.type("\x1b[A\x1b[A\r")
        second.wait_for(PROMPT)
        self.assertRegex(second.run("items"), r"Kept +41 +yes")

    def test_two_consoles_at_once_lose_none_of_their_lines(self):
        first, second = self.start(), self.start()
        first.run("set First 1")
        second.run("set Second 2")
        first.run("set Third 3")
        second.run("set Fourth 4")
        for terminal in (first, second):
            terminal.type("\x04")
            terminal.wait_for_end()
        path = os.path.join(self.state_dir, "bundle_host", "history")
        self.assertEqual(os.stat(path).st_mode & 0o777, 0o600)
        with open(path, encoding="ascii") as file:
            lines = [line.rstrip().replace("\\040", " ") for line in file]
        self.assertEqual(lines[1:], ["set First 1", "set Second 2", "set Third 3", "set Fourth 4"])

    @unittest.skipUnless(os.environ.get("NO_FCHMOD"), "a sanitizer's run time must be the first library")
    def test_a_new_history_is_private_from_the_start(self):
        """Some versions of libedit restrict the mode themselves; a preloaded fchmod disables that."""
        os.umask(0o022)
        self.leave_a_history({"LD_PRELOAD": os.environ["NO_FCHMOD"]})

    def test_a_readable_history_becomes_private(self):
        path = os.path.join(self.state_dir, "bundle_host", "history")
        os.makedirs(os.path.dirname(path))
        with open(path, "w", encoding="ascii") as file:
            file.write("_HiStOrY_V2_\n")
        os.chmod(path, 0o644)
        self.leave_a_history({})

    def leave_a_history(self, environment):
        """Runs a console; only the user may then read the history file."""
        terminal = self.start(environment=environment)
        terminal.run("log")
        terminal.type("\x04")
        terminal.wait_for_end()
        path = os.path.join(self.state_dir, "bundle_host", "history")
        self.assertEqual(os.stat(path).st_mode & 0o777, 0o600)

    def test_an_abandoned_line_is_not_in_the_history(self):
        terminal = self.start()
        terminal.run("log")
        terminal.type("set Gone 1\x03")
        terminal.wait_for(PROMPT)
        terminal.type("\x1b[A\r")
        self.assertIn("log level: 0", terminal.wait_for(PROMPT))


if __name__ == "__main__":
    HOST, BUNDLE, FIXTURES = sys.argv[1:4]
    unittest.main(argv=sys.argv[:1] + sys.argv[4:])
