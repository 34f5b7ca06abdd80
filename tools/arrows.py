#!/usr/bin/env python3
"""Checks the #include directives of a source tree against a table of allowed edges between folders.

arrows.py TABLE SRC
Each line of TABLE is "folder: folders whose headers it may include"; tools/arrows.txt describes it. Headers are
named by their path from SRC. A name without a folder is a header that the build makes from a form of ui.
Prints file:line for every other include, and every edge of TABLE that no include uses. The edges of TABLE must not
form a cycle. Exit status 0 when there is nothing to print.
"""

import graphlib
import pathlib
import re
import sys

INCLUDE = re.compile(r'\s*#\s*include\s*["<]([^">]+)[">]')


def read_table(path):
    """The allowed folders of each folder."""
    rows = {}
    for line in path.read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("#"):
            folder, _, allowed = line.partition(":")
            rows[folder] = set(allowed.split())
    return rows


def included(source, root):
    """The line number and the name of each include of a header of this project."""
    for number, line in enumerate(source.read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if match and ('"' in line or (root / match.group(1)).exists()):
            yield number, match.group(1)


def cycles(rows):
    """The first cycle in the table, if there is one."""
    try:
        graphlib.TopologicalSorter(rows).prepare()
    except graphlib.CycleError as error:
        yield "The table has a cycle: " + " -> ".join(reversed(error.args[1]))


def violations(rows, root):
    yield from cycles(rows)
    sources = sorted(path for path in root.rglob("*") if path.suffix in (".h", ".cpp"))
    folders = {str(path.parent.relative_to(root)) for path in sources}
    if not sources:
        yield f"{root}: there are no sources"
    for folder in sorted(folders ^ set(rows)):
        yield f"{root}/{folder}: " + ("is not in the table" if folder in folders else "is in the table but has no sources")
    unused = {(folder, target) for folder in folders & set(rows) for target in rows[folder]}
    for source in sources:
        folder = str(source.parent.relative_to(root))
        for number, name in included(source, root):
            target = str(pathlib.PurePath(name).parent) if "/" in name else "ui"
            unused.discard((folder, target))
            if "/" in name and not (root / name).exists():
                yield f'{source}:{number}: "{name}" is not a path from {root}'
            elif folder in rows and target not in rows[folder] | {folder}:
                yield f'{source}:{number}: {folder} must not include "{name}"'
    for folder, target in sorted(unused):
        yield f"The table allows {folder} to include {target}, but no include does"


def main():
    table, root = map(pathlib.Path, sys.argv[1:])
    found = list(violations(read_table(table), root))
    print("\n".join(found), end="\n" if found else "")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
