#!/usr/bin/env python3
"""Compares docs/images/console.svg with a new session: console_picture_test.py BUILD."""
import difflib
import pathlib
import subprocess
import sys

import built

PROJECT = pathlib.Path(__file__).resolve().parent.parent.parent
BUILD = pathlib.Path(sys.argv[1])
if absent := built.missing(BUILD / "host/bundle_host", BUILD / "src/libii_ascii_util.so"):
    sys.exit(absent)
committed = (PROJECT / "docs/images/console.svg").read_text()
drawn = subprocess.run([sys.executable, "-B", PROJECT / "scripts/console_picture.py", BUILD], text=True, check=True,
                       stdout=subprocess.PIPE).stdout
if committed != drawn:
    print("docs/images/console.svg differs from a session of this build; run scripts/pictures.sh")
    sys.exit("\n".join(difflib.unified_diff(committed.splitlines(), drawn.splitlines(), "committed", "now", lineterm="", n=0)))
