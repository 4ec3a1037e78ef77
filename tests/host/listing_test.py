#!/usr/bin/env python3
"""Tests the output of bundles, services and interfaces."""
import calendar
import json
import os
import re
import shutil
import subprocess
import time

import host_case
from host_case import BUNDLE, HOST, HostTest, broken


class Listings(HostTest):
    def test_listings_are_json_when_wanted(self):
        done = self.loaded("run", "-", stdin="services --json\n")
        self.assertEqual(json.loads(done.stdout),
                         [{"bundle": "bundle_host", "service": "log", "interface": "BundleHostLog", "valid": "1"},
                          {"bundle": "ii_asciiagent_bundle", "service": "ii_ascii_util", "interface": "AsciiUtilService",
                           "valid": "1"}])

    def test_a_name_that_was_looked_up_and_never_registered_is_listed(self):
        library = broken("pinned")
        done = self.host("-b", library, "run", "-", stdin="interfaces --json\ninterfaces\n")
        rows = json.loads(done.stdout[: done.stdout.index("\n]\n") + 3])
        self.assertEqual([(row["name"], row["state"]) for row in rows],
                         [("BrokenInterface", "registered"), ("LogSvcInterface", "registered"),
                          ("WantedInterface", "never registered")])
        self.assertRegex(done.stdout, r"WantedInterface  never registered  0      1        -              -\n")

    def test_bundles_are_listed_with_their_file_and_build(self):
        library = shutil.copy(BUNDLE, self.dir)
        # Times are in UTC in every time zone.
        with subprocess.Popen([HOST, "-c", self.config, "--log-level", "off", "-b", library, "run", "-"], text=True,
                              env=dict(os.environ, TZ="XXX5"),
                              stdin=subprocess.PIPE, stdout=subprocess.PIPE) as process:
            process.stdin.write("bundles --json\n")
            process.stdin.flush()
            first = json.loads("".join(process.stdout.readline() for _ in range(3)))[0]
            os.utime(library, (1, 1))
            process.stdin.write("bundles --json\nreload ii_ascii_util\nbundles --json\n")
            process.stdin.flush()
            second = json.loads("".join(process.stdout.readline() for _ in range(3)))[0]
            self.assertEqual(process.stdout.readline(), f"reloaded ii_ascii_util from {os.path.realpath(library)}\n")
            third = json.loads("".join(process.stdout.readline() for _ in range(3)))[0]
        notes = subprocess.run(["readelf", "-n", library], capture_output=True, text=True, check=True).stdout
        loaded = first.pop("loaded")
        self.assertRegex(loaded, r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ$")
        self.assertLess(abs(calendar.timegm(time.strptime(loaded, "%Y-%m-%dT%H:%M:%SZ")) - time.time()), 600)
        self.assertEqual(first, {"name": "ii_ascii_util", "bundle": "ii_asciiagent_bundle", "service": "ii_ascii_util",
                                 "library": os.path.realpath(library), "file": "unchanged",
                                 "build": re.search(r"Build ID: (\w+)", notes).group(1)})
        self.assertEqual([second["file"], third["file"]], ["changed", "unchanged"])


if __name__ == "__main__":
    host_case.main()
