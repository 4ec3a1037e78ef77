#!/usr/bin/env python3
"""Draws a console session of bundle_host as SVG, from a real session: console_picture.py BUILD >PICTURE.

Types the commands below on a pseudo-terminal and draws what the console shows. Called by scripts/pictures.sh; a test compares the
committed picture with a new session. The commands show no times and no paths, which differ between runs.
"""
import html
import os
import pathlib
import sys
import tempfile

PROJECT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(PROJECT / "tests/host"))
from console_pty_test import PROMPT, Terminal  # noqa: E402

COMMANDS = ["services",
            "call GetAlmCfgValue COM RNC LOF 7",
            "call GetKeyValeu CAUSE 'KIND=COM, CAUSE=LOS'",
            "call GetKeyValue CAUSE 'KIND=COM, CAUSE=LOS'",
            "set IsTransQuelt yes",
            "interfaces"]
WIDTH, LINE, CHARACTER, MARGIN = 76, 18, 8.2, 14


def session(build):
    """The lines of the screen, each with its kind: prompt, problem or output."""
    with tempfile.TemporaryDirectory() as state:
        environment = {"LD_LIBRARY_PATH": f"{build}/src", "LC_ALL": "C.UTF-8"}
        os.chdir(PROJECT)
        terminal = Terminal([f"{build}/host/bundle_host", "--config-dir", "examples/config", "--svc-conf", "examples/svc.conf",
                             "--log-file", "/dev/null", "console"], state, environment)
        terminal.wait_for(PROMPT)
        for command in COMMANDS:
            yield "prompt", PROMPT + command
            for line in terminal.run(command).replace("\r", "").splitlines():
                yield ("problem" if line.startswith("column ") else "output"), line
        terminal.type("quit\r")
        terminal.wait_for_end()
        terminal.close()


def draw(lines):
    width, height = round(WIDTH * CHARACTER + 2 * MARGIN), len(lines) * LINE + 2 * MARGIN
    yield f'<svg xmlns="http://www.w3.org/2000/svg" xml:space="preserve" viewBox="0 0 {width} {height}" width="{width}" height="{height}">'
    yield "<title>A console session of bundle_host</title>"
    yield ("<style>text { font: 13px 'DejaVu Sans Mono', Consolas, monospace; white-space: pre; fill: #d8dee9 } "
           ".prompt { fill: #ffffff; font-weight: bold } .problem { fill: #ff9a8a }</style>")
    yield f'<rect width="{width}" height="{height}" rx="6" fill="#1f2430"/>'
    for number, (kind, line) in enumerate(lines, 1):
        length = f' textLength="{len(line) * CHARACTER:.1f}"' if line else ""
        yield f'<text class="{kind}" x="{MARGIN}" y="{MARGIN + number * LINE - 5}"{length}>{html.escape(line, quote=False)}</text>'
    yield "</svg>"


if __name__ == "__main__":
    if sys.argv[1:] == ["--help"]:
        print(__doc__.strip())
    else:
        print("\n".join(draw(list(session(pathlib.Path(sys.argv[1]).resolve())))))
