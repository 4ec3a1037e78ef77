#!/usr/bin/env python3
"""Runs the example command file through the host and compares what comes out, log included, with every_operation.expected.

  every_operation_test.py [--update] BUNDLE_HOST SOURCE LIBRARY_DIR

SOURCE is the top of the source tree, LIBRARY_DIR where libii_ascii_util.so is. Times and the library's path, which differ
from run to run, are written <time> and <library>. --update rewrites the expected file.
"""
import difflib
import os
import pathlib
import re
import subprocess
import sys

EXPECTED = pathlib.Path(__file__).with_name("every_operation.expected")


def run(host, *arguments, source, libraries):
    environment = dict(os.environ, LD_LIBRARY_PATH=libraries)
    done = subprocess.run([host, "--config-dir", "examples/config", *arguments], cwd=source, env=environment, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
    return done.returncode, done.stdout


def without_what_differs(text, libraries):
    text = re.sub(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d(\.\d{3}Z)?", "<time>", text)
    return text.replace(str(pathlib.Path(libraries).resolve() / "libii_ascii_util.so"), "<library>")


def operations_not_called(host, commands, source, libraries):
    _, listing = run(host, "help", "call", source=source, libraries=libraries)
    names = re.findall(r"^  (\w+)(?: \w+:\w+)* -> ", listing, re.MULTILINE)
    assert len(names) == 22, f"help lists {len(names)} operations, not 22"
    return [name for name in names if not re.search(rf"^call {name}\b", commands, re.MULTILINE)]


def main():
    update = sys.argv[1] == "--update"
    host, source, libraries = sys.argv[2:] if update else sys.argv[1:]
    script = "examples/every_operation.txt"
    missing = operations_not_called(host, (pathlib.Path(source) / script).read_text(), source, libraries)
    if missing:
        sys.exit(f"{script} does not call {', '.join(missing)}")
    code, output = run(host, "--svc-conf", "examples/svc.conf", "--echo", "run", script, source=source, libraries=libraries)
    output = without_what_differs(output, libraries)
    if update:
        EXPECTED.write_text(output)
        return
    difference = list(difflib.unified_diff(EXPECTED.read_text().splitlines(), output.splitlines(), "expected", "got",
                                           lineterm=""))
    if difference:
        sys.exit("\n".join(difference))
    if code != 0:
        sys.exit(f"bundle_host ended with {code}")


if __name__ == "__main__":
    main()
