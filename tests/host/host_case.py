"""Shared base of the tests of the program: a configuration directory and functions that run bundle_host.

A test script is called with BUNDLE_HOST LIBII_ASCII_UTIL DIRECTORY_OF_BROKEN_BUNDLES [TEST].
"""
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

ALARMS = "# kind\tequipment\tcause\tnumber\tvalue\nLINK\tRTR\tdown\t7\t15\n"
ITEMS = "[items]\nIsTransQuelt=0\n"

HOST, BUNDLE, BROKEN = sys.argv[1:4]


# Programs that the tests start must not inherit ignored signals; a shell ignores SIGINT for background jobs.
for number in (signal.SIGTERM, signal.SIGHUP):
    signal.signal(number, signal.SIG_DFL)
signal.signal(signal.SIGINT, signal.default_int_handler)


def broken(kind):
    return os.path.join(BROKEN, f"libbroken_{kind}.so")


class HostTest(unittest.TestCase):
    def setUp(self):
        self.dir = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.dir)
        self.config = os.path.join(self.dir, "config")
        self.write("config/ii_asciiagent_bundle/AlarmConfig.csv", ALARMS)
        self.write("config/config_items.ini", ITEMS)

    def write(self, name, text):
        path = os.path.join(self.dir, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="latin-1", newline="") as file:
            file.write(text)
        return path

    def host(self, *arguments, stdin="", environment=None, directory=None):
        env = {k: v for k, v in os.environ.items() if k != "BUNDLE_HOST_CONFIG_DIR"}
        env.update(environment or {})
        return subprocess.run([HOST, *arguments], input=stdin, env=env, cwd=directory, capture_output=True, text=True,
                              timeout=200, check=False)

    def with_bundle(self, *arguments):
        """The command line that loads the bundle and logs nothing."""
        return ["--config-dir", self.config, "--log-level", "off", "--bundle", BUNDLE, *arguments]

    def loaded(self, *arguments, stdin=""):
        return self.host(*self.with_bundle(*arguments), stdin=stdin)

    def call(self, *arguments):
        done = self.loaded("call", *arguments)
        self.assertEqual((done.returncode, done.stderr), (0, ""), done)
        return done.stdout

    def assert_fails(self, done, code, message):
        self.assertEqual(done.returncode, code, done)
        self.assertEqual(done.stderr.count("\n"), 1, done.stderr)
        self.assertIn(message, done.stderr)


def main():
    unittest.main(argv=sys.argv[:1] + sys.argv[4:])
