#!/usr/bin/env python3
"""Tests cmake/sbom.py with a replaced package database and readelf, for a target that is not the build machine."""
import json
import os
import pathlib
import subprocess
import tempfile
import unittest

SBOM = pathlib.Path(__file__).resolve().parent.parent.parent / "cmake/sbom.py"


class Sbom(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.place = pathlib.Path(directory.name)
        self.command("readelf", 'case "$3" in */ours.so) echo " (NEEDED) Shared library: [libneeded.so.1]" ;; esac')
        self.command("dpkg-query", f"""
case "$1 $2 $3" in
  "--search {self.place}/target/libneeded.so.1 ") echo "libneeded1:s390x: $2" ;;
  "--search {self.place}/machine/libneeded.so.1 ") echo "libneeded1:amd64: $2" ;;
  --show*libneeded1:s390x) printf 'libneeded1\\t2:1.0+dfsg-1~b\\ts390x\\n' ;;
  --show*libneeded1:amd64) printf 'libneeded1\\t2:1.0+dfsg-1~b\\tamd64\\n' ;;
  --show*libneeded1) printf 'libneeded1\\t2:1.0\\tamd64\\nlibneeded1\\t2:1.0\\ts390x\\n' ;;
  *) exit 1 ;;
esac""")
        for name in ["target/libneeded.so.1", "machine/libneeded.so.1", "ours.so"]:
            (self.place / name).parent.mkdir(exist_ok=True)
            (self.place / name).touch()

    def command(self, name, script):
        (self.place / name).write_text(f"#!/bin/sh\n{script}\n")
        (self.place / name).chmod(0o755)

    def bill(self, *directories):
        output = self.place / "bill.json"
        words = [word for directory in directories for word in ["--directory", f"{self.place}/{directory}"]]
        done = subprocess.run([str(SBOM), "--name", "n", "--version", "1", "--output", str(output), *words,
                               str(self.place / "ours.so")], text=True, stderr=subprocess.PIPE, check=False,
                              env={"PATH": f"{self.place}:{os.environ['PATH']}"})
        self.assertEqual(done.returncode, 0, done.stderr)
        return json.loads(output.read_text())

    def test_library_is_the_target_s_and_its_version_is_escaped(self):
        self.assertEqual([part["purl"] for part in self.bill("target", "machine")["components"]],
                         ["pkg:deb/debian/libneeded1@2%3A1.0%2Bdfsg-1~b?arch=s390x"])

    def test_directories_are_searched_in_their_order(self):
        self.assertEqual([part["purl"] for part in self.bill("empty", "machine", "target")["components"]],
                         ["pkg:deb/debian/libneeded1@2%3A1.0%2Bdfsg-1~b?arch=amd64"])


if __name__ == "__main__":
    unittest.main()
