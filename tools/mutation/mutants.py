"""Finds what can be changed in a source file: comparisons, constants, true and false."""

import dataclasses
import pathlib
import re

FOLDERS = ("src/core/audio", "src/core/dsp", "src/core/generator")

# The layout (clang-format) has comparisons between blanks, and brackets of templates, arrows and shifts not.
_TOKENS = re.compile(
    r"""
    (?P<skip>//[^\n]*|/\*.*?\*/                                           # comments
      |(?:u8|[uUL])?R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"                  # texts
      |(?:u8|[uUL])?"(?:\\.|[^"\\\n])*"|(?:u8|[uUL])?'(?:\\.|[^'\\\n])+'
      |^[ \t]*\#(?:\\\n|[^\n])*                                           # directives
      |\bstatic_assert\s*\(.*?\)\s*;|\[\[.*?\]\]|\balignas\(\d+\))
    |(?P<number>\.?[0-9](?:'?[0-9A-Za-z_.]|(?<=[eEpP])[+-])*)
    |(?P<word>[A-Za-z_]\w*)
    |(?P<comparison>(?<=\s)(?:<=|>=|==|!=|<|>)(?=\s))
    """,
    re.DOTALL | re.MULTILINE | re.VERBOSE,
)
_INTEGER = re.compile(r"(0[xX][0-9A-Fa-f']+|0[bB][01']+|[0-9][0-9']*)([uUlLzZ]*|[a-z]{1,3})")
_FLOATING = re.compile(r"((?:[0-9][0-9']*)?\.?[0-9]*(?:[eE][+-]?[0-9]+)?)([fFlL]?)")

# Each comparison at its boundary and turned round.
_COMPARISONS = {
    "<": ("<=", ">="),
    "<=": ("<", ">"),
    ">": (">=", "<="),
    ">=": (">", "<"),
    "==": ("!=",),
    "!=": ("==",),
}


@dataclasses.dataclass(frozen=True)
class Mutant:
    """One change. `path` is relative to the root, `start` and `end` are offsets into the text."""

    path: str
    line: int
    start: int
    end: int
    kind: str
    old: str
    new: str
    old_line: str
    new_line: str
    occurrence: int  # of the same line in the same file, from 1

    @property
    def key(self):
        """What stays the same when other lines move."""
        return (self.path, self.occurrence, self.old_line, self.new_line)

    @property
    def folder(self):
        return self.path.split("/")[2]

    @property
    def header(self):
        return self.path.endswith(".h")

    def apply(self, text):
        return text[: self.start] + self.new + text[self.end :]


def _other_integers(text):
    digits, suffix = _INTEGER.fullmatch(text).groups()
    base = {"0x": 16, "0b": 2}.get(digits[:2].lower(), 10)
    if base == 10 and len(digits) > 1 and digits[0] == "0":
        base = 8
    value = int(digits.replace("'", ""), base)
    written = {16: hex, 10: str, 8: lambda n: "0" + oct(n)[2:], 2: bin}[base]
    values = [1] if value == 0 else [value - 1, value + 1]
    return [written(other) + suffix for other in values]


def _other_floatings(text):
    digits, suffix = _FLOATING.fullmatch(text).groups()
    value = float(digits.replace("'", ""))
    return [repr(value * 1.01 + 0.01) + suffix]


def _changes(kind, text):
    if kind == "comparison":
        return _COMPARISONS[text]
    if kind == "word":
        return {"true": ("false",), "false": ("true",)}.get(text, ())
    if _INTEGER.fullmatch(text):
        return _other_integers(text)
    if _FLOATING.fullmatch(text):
        return _other_floatings(text)
    return ()


def _pure(before, after):
    """The 0 of a pure virtual function."""
    return re.search(r"(\)|const|noexcept|override)\s*=\s*$", before) and re.match(r"\s*;", after)


def find_in_text(path, text):
    found = []
    lines = text.split("\n")
    for match in _TOKENS.finditer(text):
        kind = "skip" if match.group("skip") else match.lastgroup
        if kind == "skip" or _pure(text[: match.start()][-40:], text[match.end() :][:8]):
            continue
        number = text.count("\n", 0, match.start())
        column = match.start() - (text.rfind("\n", 0, match.start()) + 1)
        old_line = lines[number]
        occurrence = 1 + sum(1 for line in lines[:number] if line.strip() == old_line.strip())
        for new in _changes(kind, match.group()):
            new_line = old_line[:column] + new + old_line[column + len(match.group()) :]
            name = "true or false" if kind == "word" else "constant" if kind == "number" else kind
            found.append(
                Mutant(path, number + 1, match.start(), match.end(), name, match.group(), new,
                       old_line.strip(), new_line.strip(), occurrence)
            )
    return found


def find(root):
    """All mutants of the folders under `root`, in the order of files and lines."""
    root = pathlib.Path(root)
    found = []
    for folder in FOLDERS:
        for path in sorted((root / folder).iterdir()):
            if path.suffix in (".cpp", ".h"):
                found += find_in_text(str(path.relative_to(root)), path.read_text(encoding="utf-8"))
    return found


def switchable(mutant, text):
    """Whether the change can be left to a switch at run time: a value outside constant expressions."""
    if mutant.kind == "comparison":
        return False
    before = text[text.rfind("\n", 0, mutant.start) + 1 : mutant.start]
    brackets = re.sub(r"<<|->|\s[<>]=?\s", "", before)
    return "constexpr" not in before and "enum" not in before and brackets.count("<") <= brackets.count(">")


def with_switches(text, mutants, numbers, switch):
    """The text with all of `mutants` in it, each behind `switch(number)`."""
    by_place = {}
    for mutant in mutants:
        by_place.setdefault((mutant.start, mutant.end), []).append(mutant)
    for (start, end), at in sorted(by_place.items(), reverse=True):
        value = text[start:end]
        for mutant in at:
            value = f"({switch}({numbers[mutant]}) ? {mutant.new} : {value})"
        text = text[:start] + value + text[end:]
    return text
