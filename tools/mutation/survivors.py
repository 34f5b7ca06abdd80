"""The list of survivors that are explained.

A reason begins with "because" and goes on over indented lines. Below it, for each file a line with its
path, and for each survivor the line as it is, after "-", and as it was changed, after "+". Where the same
line occurs several times in a file, "-2" stands for the second one, and so on.
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
            raise Bad(f"{path}:{number}: not understood: {line}")
    return reasons


def write_entry(mutant):
    place = "-" if mutant.occurrence == 1 else f"-{mutant.occurrence}"
    return f"{place} {mutant.old_line}\n+ {mutant.new_line}"
