#!/usr/bin/env python3
"""Turns the fenced blocks of a page into files that can be compiled and run.

  extract_snippets.py PAGE DIRECTORY

A ```cpp block whose first line is `// file: NAME` becomes DIRECTORY/NAME; one that starts with an `#include` becomes
DIRECTORY/unitN.cpp, N counting from 1. Every other ```cpp block becomes a function of
DIRECTORY/snippets.cpp, with the interface as `util`. All ```tsv blocks together become DIRECTORY/AlarmConfig.csv.
"""
import pathlib
import re
import sys

HEAD = """\
#undef NDEBUG
#include <cassert>
#include <cstdint>
#include <string>
#include <vector>

#include "ascii_util/ascii_util_interface.h"
#include "ascii_util/text_functions.h"

"""


def blocks(page):
    """Language, number of the first line inside, and lines of every fenced block."""
    language, start, lines = None, 0, []
    for number, line in enumerate(page.read_text().splitlines(), 1):
        fence = re.match(r"```(\w*)$", line)
        if language is None and fence:
            language, start, lines = fence.group(1), number + 1, []
        elif fence:
            yield language, start, lines
            language = None
        elif language is not None:
            lines.append(line)
    if language is not None:
        sys.exit(f"{page}:{start}: the block is not closed")


def snippet_source(page, snippets):
    parts = [HEAD]
    for start, lines in snippets:
        parts.append(f"static void Line{start}([[maybe_unused]] NS_ASCII::AsciiUtilInterface& util) {{\n"
                     f'#line {start} "{page}"\n' + "\n".join(lines) + "\n}\n\n")
    calls = "".join(f"  Line{start}(util);\n" for start, _ in snippets)
    parts.append(f"int RunSnippets(NS_ASCII::AsciiUtilInterface& util) {{\n{calls}  return {len(snippets)};\n}}\n")
    return "".join(parts)


def main():
    if len(sys.argv) != 3 or sys.argv[1] == "--help":
        print(__doc__.strip())
        return 0 if sys.argv[1:] == ["--help"] else 2
    page, directory = map(pathlib.Path, sys.argv[1:])
    directory.mkdir(parents=True, exist_ok=True)
    snippets, table, units = [], [], 0
    for language, start, lines in blocks(page):
        name = re.match(r"// file: ([\w.]+)$", lines[0]) if lines else None
        if language == "tsv":
            table += lines
        elif language == "cpp" and name:
            (directory / name.group(1)).write_text("\n".join(lines) + "\n")
        elif language == "cpp" and lines[0].startswith("#include"):
            units += 1
            (directory / f"unit{units}.cpp").write_text(f'#line {start} "{page}"\n' + "\n".join(lines) + "\n")
        elif language == "cpp":
            snippets.append((start, lines))
    (directory / "snippets.cpp").write_text(snippet_source(page, snippets))
    (directory / "AlarmConfig.csv").write_text("".join(line + "\n" for line in table))
    return 0


if __name__ == "__main__":
    sys.exit(main())
