#!/usr/bin/env python3
"""Finds words that a reader must translate, and says what to write instead: words_test.py [FILE...].

words.txt lists the words. They are searched in the given files, or in all text files of the working tree, new ones included, and in
their names: in comments, messages, pages and test names, also inside identifiers (GoesOnBehind, is_told), and across the ends of
lines. Prints FILE:LINE:COLUMN, the word and what to write for each; exit 1 if there is one.
"""
import pathlib
import re
import subprocess
import sys

PROJECT = pathlib.Path(__file__).resolve().parent.parent.parent
LIST = pathlib.Path(__file__).with_name("words.txt")
# The list itself, and what others wrote or a program made.
LEFT_OUT = re.compile(r"tests/docs/words.*|.*\.(abi|png|svg)|fuzz/corpus/.*")
# What separates two words: blanks, an underscore, a line end with the comment mark that follows it,
# or an escape such as \\t in a text.
BETWEEN = re.compile(r"\s*\n\s*(?://[/!<]*|#|\*)?\s*|(?:\\[nrt]|[\s_])+|(?<=[a-z0-9])(?=[A-Z])|(?<=[A-Z])(?=[A-Z][a-z])")


class Rule:
    def __init__(self, line):
        self.word, self.instead, *allowed = (cell.strip() for cell in line.split("|"))
        # In the list, "/" separates spellings; allowed ones are phrases around the word.
        self.pattern = re.compile(rf"\b(?:{self.word.replace('/', '|')})\b")
        self.allowed = re.compile("|".join(rf"\b(?:{cell.replace('/', '|')})\b" for cell in allowed) or r"(?!)")

    def places(self, words):
        """The beginnings of the word in the text, except inside allowed phrases."""
        matches = list(self.pattern.finditer(words))
        spared = [match.span() for match in self.allowed.finditer(words)] if matches else []
        for match in matches:
            if not any(begin <= match.start() and match.end() <= end for begin, end in spared):
                yield match.start(), match.group()


def rules():
    return [Rule(line) for line in LIST.read_text().splitlines() if line and not line.startswith("#")]


def as_words(text):
    """The text in lower case with one blank between words, and the offset in `text` of each of its characters."""
    parts, offsets, end = [], [], 0
    for gap in BETWEEN.finditer(text):
        parts += [text[end:gap.start()], " "]
        offsets += [*range(end, gap.start()), gap.start()]
        end = gap.end()
    parts.append(text[end:])
    offsets += range(end, len(text) + 1)
    return "".join(parts).lower(), offsets


def findings(name, text, known):
    words, offsets = as_words(text)
    for rule in known:
        for at, word in rule.places(words):
            before = text[:offsets[at]]
            yield f"{name}:{before.count(chr(10)) + 1}:{len(before) - before.rfind(chr(10))}: '{word}': write {rule.instead}"


def tree():
    listed = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard", "--deduplicate"], cwd=PROJECT,
                            text=True, check=True, stdout=subprocess.PIPE).stdout.splitlines()
    return [name for name in listed if (PROJECT / name).is_file() and not LEFT_OUT.fullmatch(name)]


def check(names):
    known = rules()
    found = []
    for name in names:
        found += findings(name, name, known)
        try:
            found += findings(name, (PROJECT / name).read_text(), known)
        except UnicodeDecodeError:
            continue
    return sorted(set(found))


if __name__ == "__main__":
    found = check(sys.argv[1:] or tree())
    for line in found:
        print(line)
    sys.exit(bool(found))
