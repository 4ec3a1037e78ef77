"""What can be changed in the bundle's sources: the small mistakes that a test should notice."""

import dataclasses
import pathlib
import re


def next_number(match):
    digits, suffix = match.group(1), match.group(2)
    if digits.lower().startswith("0x"):
        return f"0x{int(digits, 16) + 1:X}{suffix}"
    return f"{int(digits.replace(chr(39), '')) + 1}{suffix}"


def number_before(match):
    digits, suffix = match.group(1), match.group(2)
    number = int(digits.replace(chr(39), ""), 0)
    return f"{number - 1}{suffix}" if number > 0 else match.group()


def next_character(match):
    return f"'{chr(ord(match.group(1)) + 1)}'"


# (what it is, pattern, replacement); a pattern matches code only, never comments or texts.
RULES = [
    ("relation", r" == ", " != "), ("relation", r" != ", " == "),
    ("relation", r" < ", " <= "), ("relation", r" > ", " >= "),
    ("relation", r" <= ", " < "), ("relation", r" >= ", " > "),
    ("arithmetic", r" \+ ", " - "), ("arithmetic", r" - ", " + "),
    ("arithmetic", r" \* (?=[\w(])", " / "), ("arithmetic", r" / ", " * "), ("arithmetic", r" % ", " / "),
    ("arithmetic", r"\+\+(?=\w)", "--"), ("arithmetic", r" \+= ", " -= "), ("arithmetic", r" -= ", " += "),
    ("arithmetic", r" << ", " >> "), ("arithmetic", r" >> ", " << "), ("arithmetic", r">>=", "<<="),
    ("arithmetic", r" & ", " | "), ("arithmetic", r" \| ", " & "), ("arithmetic", r" \^ ", " | "), ("arithmetic", r" \^= ", " |= "),
    ("arithmetic", r"(?<=[(=] )-(?=\w)", ""), ("arithmetic", r"(?<=\()-(?=\w)", ""),
    ("logic", r" && ", " || "), ("logic", r" \|\| ", " && "), ("logic", r"!(?=[\w(])", ""),
    ("logic", r"\b(if|while) \((\w[\w.>:-]*(?:\([\w.]*\))?)\)(?= \{$)", r"\1 (!(\2))"),
    ("logic", r"\? ([^?:;]+) : ([^?:;,]+)(?=;$)", r"? \2 : \1"),
    ("constant", r"(?<![\w.'])(0x[0-9A-Fa-f]+|\d[\d']*)([uU]?)(?![\w.'])", next_number),
    ("constant", r"(?<![\w.'])(0x[0-9A-Fa-f]+|\d[\d']*)([uU]?)(?![\w.'])", number_before),
    ("constant", r"\btrue\b", "false"), ("constant", r"\bfalse\b", "true"),
    ("character", r"'([^'\\])'", next_character), ("character", r"'(\\[tnrvf0])'", "'~'"),
    ("arguments", r"(?<=\()([\w.]+), ([\w.]+)(?=[,)])", r"\2, \1"),
    ("arguments", r"(?<=, )([\w.]+), ([\w.]+)(?=[,)])", r"\2, \1"),
    ("statement", r"^(\s+)(?!return|const|auto|static|using|case|default|break|throw|friend)[\w:.>()\[\]*-]+(\(| = | [-+^|&]= ).*;$",
     r"\1;"),
    ("statement", r"^(\s+)[-+]{2}\w+;$", r"\1;"),
    ("statement", r"^(\s+)(break|return|continue);$", r"\1;"),
    ("text", r'"([^"\\]+)"', r'"\1?"'),
]

# Only a race shows these.
ORDER_RULES = [("order", r"memory_order_(release|acquire|acq_rel)\b", "memory_order_relaxed"),
               ("order", r"__ATOMIC_(RELEASE|ACQUIRE)\b", "__ATOMIC_RELAXED")]

LITERAL = re.compile(r'"(?:[^"\\]|\\.)*"|\'(?:[^\'\\]|\\.)*\'')
IN_LITERALS = ("text", "character")

# A name with something before it, at the margin or in a class.
FUNCTION_HEAD = re.compile(r"(?:  )?(?!return|else|static_cast)[\w\[][^=;()]*[ *&:]([\w~]+)\(")


@dataclasses.dataclass
class Mutant:
    """One change: lines from `number` (counted from 0) on that become others."""
    path: pathlib.Path
    number: int
    what: str
    old: list
    new: list
    function: str = ""  # the function that it is in

    def key(self):
        """What it is, on whatever line of its function it stands."""
        old, new = (" ".join(line.strip() for line in lines) for lines in (self.old, self.new))
        return f"{self.path} {self.function}".strip(), old, new

    def name(self):
        return f"{self.path}:{self.number + 1}: {self.key()[2]}"

    def __str__(self):
        place, old, new = self.key()
        return f"{self.path}:{self.number + 1}: {self.what}: {place}: {old}  ->  {new}"

    def applied_to(self, text):
        lines = text.split("\n")
        assert lines[self.number:self.number + len(self.old)] == self.old
        lines[self.number:self.number + len(self.old)] = self.new
        return "\n".join(lines)


def without_comment(line):
    """The line with its comment blanked, so that columns stay."""
    texts = [match.span() for match in LITERAL.finditer(line)]
    for match in re.finditer("//", line):
        if not any(start <= match.start() < end for start, end in texts):
            return line[:match.start()].rstrip()
    return line


def of_line(path, number, line, rules):
    code = without_comment(line)
    texts = [match.span() for match in LITERAL.finditer(code)]
    for what, pattern, replacement in rules:
        for match in re.finditer(pattern, code):
            if what not in IN_LITERALS and what != "statement" and any(a <= match.start() < b for a, b in texts):
                continue
            put = replacement(match) if callable(replacement) else match.expand(replacement)
            changed = code[:match.start()] + put + code[match.end():]
            if changed != code:
                yield Mutant(path, number, what, [line], [changed])


def of_statement(path, number, lines):
    """The removal of a statement of several lines that starts there."""
    before = without_comment(lines[number - 1]).rstrip() if number else ""
    if before.strip() and before[-1] not in ";{}:":
        return
    if not re.match(r"\s+(?!return|const|auto|static|using|case|default|throw|friend|if|for|while|virtual|inline|template)[\w:.>*-]+[(.]",
                    lines[number]):
        return
    for last in range(number + 1, min(number + 5, len(lines))):
        text = without_comment(lines[last])
        if text.endswith(("{", "}")):
            return
        if text.endswith(";"):
            indent = re.match(r"\s*", lines[number]).group()
            yield Mutant(path, number, "statement", lines[number:last + 1], [indent + ";"])
            return


def of_file(root, path, rules):
    lines = (root / path).read_text(encoding="utf-8").split("\n")
    function, end = "", "}"
    for number, line in enumerate(lines):
        code = without_comment(line).strip()
        head = FUNCTION_HEAD.match(line)
        if head and not code.endswith(";") and (path.suffix == ".h" or not line.startswith(" ")):
            function = head.group(1)
            end = line[:len(line) - len(line.lstrip())] + "}"
        elif line == end:
            function = ""
        # Declarations without a body have nothing to change; a static_assert is a test itself.
        if not code or code.startswith(("#", "using ", "namespace ", "template ", "static_assert")) or code.endswith(("= default;", "= delete;")):
            continue
        found = [*of_line(path, number, line, rules)]
        if rules is RULES and not without_comment(line).endswith((";", "{", "}")):
            found += of_statement(path, number, lines)
        for mutant in found:
            mutant.function = function
        yield from found


def possible(root, units, rules):
    """Everything that the rules can change in the units; a unit is the stem of its files, and may be a pattern."""
    found = {}
    for unit in units:
        for path in sorted(path for path in (root / "src").glob(f"{unit}.*") if path.suffix in (".h", ".cpp")):
            for mutant in of_file(root, path.relative_to(root), rules):
                found.setdefault(mutant.name(), mutant)
    return list(found.values())


def read_explained(path):
    """The changes that are known to change nothing. Four lines each: file and function, old, new, reason; then an empty one."""
    explained = set()
    if path.exists():
        text = "\n".join(line for line in path.read_text(encoding="utf-8").splitlines() if not line.startswith("#"))
        for entry in filter(None, (part.strip("\n") for part in re.split(r"\n\s*\n", text))):
            lines = [line.strip() for line in entry.split("\n")]
            explained.add((lines[0], lines[1], lines[2]))
    return explained
