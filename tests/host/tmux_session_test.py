#!/usr/bin/env python3
"""Tests a console session in tmux: load, reload with a running agent, Ctrl-C, a smaller window, SIGTERM, and an init that hangs.
Environment: TMUX is the path of tmux, AGENT the library of the example agent.
"""
import os
import shlex
import subprocess
import termios
import time

import host_case
from host_case import BUNDLE, HOST, HostTest, broken

TMUX, AGENT = os.environ.pop("TMUX"), os.environ["AGENT"]
DEADLINE = 100.0
ALARM = "ID=1,KIND=LINK,EQUIPMENT=RTR,CAUSE=down,NUMBER=7,AFFECTED=a,PATH=b,COUNT=3,TEXT=Abis link down\n"


class TmuxSession(HostTest):
    def setUp(self):
        super().setUp()
        self.socket = os.path.join(self.dir, "socket")
        self.addCleanup(subprocess.run, [TMUX, "-S", self.socket, "kill-server"], capture_output=True, check=False)

    def tmux(self, *arguments):
        return subprocess.run([TMUX, "-S", self.socket, "-f", "/dev/null", *arguments], check=True, capture_output=True,
                              text=True, timeout=200).stdout

    def start(self, *options):
        """Opens a console; when it ends, the screen shows its exit code."""
        console = shlex.join([HOST, "-c", self.config, "--log-file", self.dir + "/log", *options, "console"])
        self.tmux("new-session", "-d", "-x", "120", "-y", "40", "-e", f"XDG_STATE_HOME={self.dir}",
                  "-e", f"LD_LIBRARY_PATH={os.environ.get('LD_LIBRARY_PATH', '')}",
                  f"trap : INT; {console}; echo exit code $?; exec cat")
        self.wait_for("bundle_host>")

    def screen(self):
        return self.tmux("capture-pane", "-p", "-J")

    def wait_for(self, text, count=1):
        deadline = time.monotonic() + DEADLINE
        while self.screen().count(text) < count:
            if time.monotonic() > deadline:
                self.fail(f"waited for {count} x {text!r}, saw\n{self.screen()}")
            time.sleep(0.02)

    def type(self, *lines):
        for line in lines:
            self.tmux("send-keys", "-l", line)
            self.tmux("send-keys", "Enter")

    def wait_for_editor(self, active):
        """Waits until the line editor, which reads Ctrl-C as a key, is active, or is not active."""
        terminal = os.open(self.tmux("display-message", "-p", "#{pane_tty}").strip(), os.O_RDWR | os.O_NOCTTY)
        deadline = time.monotonic() + DEADLINE
        while (termios.tcgetattr(terminal)[3] & termios.ISIG == 0) != active:
            self.assertLess(time.monotonic(), deadline, f"editor active: {not active}")
            time.sleep(0.02)
        os.close(terminal)

    def interrupt(self, line):
        """Runs the line and presses Ctrl-C."""
        self.wait_for_editor(True)
        self.type(line)
        self.wait_for_editor(False)
        self.tmux("send-keys", "C-c")

    def program(self):
        """Returns the process id of the console."""
        shell = self.tmux("display-message", "-p", "#{pane_pid}").strip()
        with open(f"/proc/{shell}/task/{shell}/children", encoding="ascii") as file:
            return int(file.read().split()[0])

    def test_a_bundle_is_reloaded_while_an_agent_runs(self):
        feed, messages = self.write("feed", ALARM), os.path.join(self.dir, "messages")
        self.start("-b", BUNDLE)
        self.type(f"load {AGENT} --feed {feed} --out {messages}")
        self.wait_for("loaded alarm_agent_example from")
        self.type("reload ii_ascii_util")
        self.wait_for("ii_ascii_util is in use: alarm_agent_example is linked against it")
        self.type("reload alarm_agent_example")
        self.wait_for("reloaded alarm_agent_example from")
        self.type("unload alarm_agent_example", "reload ii_ascii_util", "call GetAlmCfgValue LINK RTR down 7")
        self.wait_for("reloaded ii_ascii_util from")
        self.wait_for("value: 15")
        with open(messages, encoding="latin-1") as file:
            self.assertEqual(len(file.readlines()), 2, "each run of the agent writes one message")
        self.type("quit")
        self.wait_for("exit code 0")

    def test_ctrl_c_stops_the_command_and_the_session_continues(self):
        self.start("-b", BUNDLE)
        self.interrupt("time 100000000 call IsValid")
        self.wait_for("interrupted by SIGINT")
        self.type("log")
        self.wait_for("log level: 0")
        script = self.write("script", "time 100000000 call IsValid\nset Never 1\n")
        self.interrupt(f"run {script}")
        self.wait_for(f"{script}:1:1: interrupted by SIGINT")
        self.wait_for_editor(True)
        self.tmux("send-keys", "-l", "set Gone 1")
        self.tmux("send-keys", "C-c")
        self.type("items")
        self.wait_for("IsTransQuelt  0      yes")
        self.assertNotRegex(self.screen(), r"(?m)^(Never|Gone) ")
        self.type("quit")
        self.wait_for("exit code 0")

    def test_sigterm_at_the_prompt_unloads_and_exits_with_143(self):
        self.start("-b", broken("fini_fails"))
        os.kill(self.program(), 15)
        self.wait_for("exit code 143")
        self.assertIn("bundle_host: broken_fini_fails: fini returned -1", self.screen())

    def test_sigint_from_outside_clears_the_line(self):
        self.start()
        self.tmux("send-keys", "-l", "set Gone 1")
        self.wait_for("set Gone 1")
        os.kill(self.program(), 2)
        self.wait_for("bundle_host>", 2)
        self.type("", "items")
        self.wait_for("IsTransQuelt  0      yes")
        self.assertNotRegex(self.screen(), r"(?m)^Gone ")

    def test_an_init_that_hangs_ends_with_a_second_ctrl_c(self):
        self.start()
        self.type(f"load {broken('init_hangs')}")
        self.wait_for("init begins")
        self.tmux("send-keys", "C-c")
        self.wait_for("^C")
        self.assertNotIn("exit code", self.screen())
        self.tmux("send-keys", "C-c")
        self.wait_for("exit code 130")

    def test_a_long_line_stays_whole_in_a_smaller_window(self):
        self.start()
        self.tmux("resize-window", "-x", "40", "-y", "40")
        self.tmux("send-keys", "-l", "set " + "A" * 50 + " 12345")
        self.tmux("send-keys", "C-a")
        self.tmux("send-keys", "C-e")
        self.tmux("send-keys", "-l", "6")
        self.tmux("send-keys", "Enter")
        self.wait_for("bundle_host>", 2)
        self.assertIn("bundle_host> set " + "A" * 50 + " 123456\n", self.screen())
        self.type("unset " + "A" * 50, "quit")
        self.wait_for("exit code 0")

    def test_candidates_fit_the_width(self):
        self.start()
        self.tmux("resize-window", "-x", "39", "-y", "40")
        self.tmux("send-keys", "-l", "call Get")
        self.tmux("send-keys", "Tab")
        self.wait_for("GetURLEncoding")
        rows = [row.rstrip() for row in self.screen().splitlines()]
        self.assertIn("GetAlmCfgValue  GetKeyValue  GetMapList", rows)
        self.assertIn("GetSvcName  GetTimeStamp", rows)


if __name__ == "__main__":
    host_case.main()
