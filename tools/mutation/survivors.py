"""Reads the list of explained survivors.

A reason begins with "because" and continues on indented lines. Below it follow the paths of files, and below each
path the survivors: after "-" the line of the source, after "+" the changed line. When the same line occurs several
times in a file, "-2" means the second occurrence.
"""

import re


class Bad(Exception):
    pass


def read(path):
    """Reasons by mutant key."""
    reasons, reason, source, old = {}, [], None, None
    for number, line in enumerate(path.read_text(encoding="utf-8").split("\n"), 1):
        changed = re.match(r"([-+])(\d*) (.*)", line)
        if not line.strip() or line.startswith("#"):
            continue
        if line.startswith("because "):
            reason, source = [line[len("because ") :]], None
        elif line.startswith("  ") and reason and source is None:
            reason.append(line.strip())
        elif line.startswith("src/"):
            source = line.strip()
        elif changed and reason and source and changed[1] == "-":
            old = (int(changed[2] or 1), changed[3].strip())
        elif changed and old and changed[1] == "+":
            reasons[(source, old[0], old[1], changed[3].strip())] = " ".join(reason)
        else:
            raise Bad(f"{path}:{number}: cannot read this line: {line}")
    return reasons


def write_entry(mutant):
    place = "-" if mutant.occurrence == 1 else f"-{mutant.occurrence}"
    return f"{place} {mutant.old_line}\n+ {mutant.new_line}"
