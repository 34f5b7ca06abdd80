"""Finds the places in a source file that can be changed: comparisons, constants, true and false."""

import dataclasses
import pathlib
import re

FOLDERS = ("src/core/audio", "src/core/dsp", "src/core/generator")

# clang-format puts blanks around comparisons, but not around the brackets of templates.
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

# Each comparison with its boundary moved, and reversed.
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
    new: str
    old_line: str
    new_line: str
    occurrence: int  # of the same line in the same file, from 1

    @property
    def key(self):
        """Identifies the change independently of its line number."""
        return (self.path, self.occurrence, self.old_line, self.new_line)

    @property
    def folder(self):
        return self.path.split("/")[2]

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


def find_in_text(path, text):
    found = []
    lines = text.split("\n")
    for match in _TOKENS.finditer(text):
        kind = "skip" if match.group("skip") else match.lastgroup
        if kind == "skip":
            continue
        number = text.count("\n", 0, match.start())
        column = match.start() - (text.rfind("\n", 0, match.start()) + 1)
        old_line = lines[number]
        occurrence = 1 + sum(1 for line in lines[:number] if line.strip() == old_line.strip())
        for new in _changes(kind, match.group()):
            new_line = old_line[:column] + new + old_line[column + len(match.group()) :]
            found.append(
                Mutant(path, number + 1, match.start(), match.end(), new, old_line.strip(), new_line.strip(), occurrence)
            )
    return found


def sources(root):
    """The source files that are changed. Headers are not."""
    return [path for folder in FOLDERS for path in sorted((pathlib.Path(root) / folder).rglob("*.cpp"))]


def find(root):
    """All mutants of the sources below `root`, in the order of files and lines."""
    return [mutant for path in sources(root)
            for mutant in find_in_text(str(path.relative_to(root)), path.read_text(encoding="utf-8"))]
