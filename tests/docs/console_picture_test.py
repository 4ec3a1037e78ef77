#!/usr/bin/env python3
"""Compares docs/images/console.svg with a new session: console_picture_test.py BUILD."""
import difflib
import pathlib
import subprocess
import sys

PROJECT = pathlib.Path(__file__).resolve().parent.parent.parent
committed = (PROJECT / "docs/images/console.svg").read_text()
drawn = subprocess.run([sys.executable, "-B", PROJECT / "scripts/console_picture.py", sys.argv[1]], text=True, check=True,
                       stdout=subprocess.PIPE).stdout
if committed != drawn:
    print("docs/images/console.svg differs from a session of this build; run scripts/pictures.sh")
    sys.exit("\n".join(difflib.unified_diff(committed.splitlines(), drawn.splitlines(), "committed", "now", lineterm="", n=0)))
