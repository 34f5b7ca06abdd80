#!/usr/bin/env python3
"""Runs clang-tidy over sources, several at once: most of its time goes into reading the same headers.

tidy.py BUILD SOURCE...
BUILD is a build folder with compile_commands.json; the sources are paths from the repository. Sources that
are compiled with the same options are looked at together, as one source that includes them. Where that has
something to say, each is looked at alone and what is said of it counts: put together, names may meet that
never meet otherwise. What clang-tidy looks for in main files only is looked for alone from the beginning.
Exit status 0 when there is nothing to say.
"""

import concurrent.futures
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
TOGETHER = 20
# A using-declaration that nothing uses is told of main files only.
ALONE = re.compile(r"^\s*using [\w:]+::\w+;", re.MULTILINE)
CHATTER = re.compile(r"^(\d+ warnings? (and \d+ errors? )?generated\.|Suppressed .*|Use -header-filter.*)\n?",
                     re.MULTILINE)


def options_of(entry):
    """The compiler and its options, without what names this source alone, and without compiled headers, which
    are another compiler's: every source includes what it needs."""
    words = iter(shlex.split(entry["command"]))
    kept = []
    for word in words:
        if word in ("-o", "-c", "-MF", "-MT", "-MQ", "-include"):
            next(words)
        elif not word.endswith(("ccache", "-MD", "-MMD", "-Winvalid-pch")):
            kept.append(word)
    return tuple(kept)


def together(entries):
    """Lists of entries with the same options from one part of the sources (src/core, src/ui ...), none longer
    than TOGETHER."""
    groups = {}
    for entry in entries:
        alone = ALONE.search(pathlib.Path(entry["file"]).read_text(encoding="utf-8"))
        key = entry["file"] if alone else options_of(entry)
        part = pathlib.Path(entry["file"]).relative_to(ROOT).parts[1]
        groups.setdefault((part, entry["directory"], key), []).append(entry)
    for group in groups.values():
        count = -(-len(group) // TOGETHER)
        for first in range(count):
            yield group[first::count]


def compiled_like(entry, source):
    """An entry for the source with the options of another."""
    command = shlex.join([*options_of(entry), "-c", source])
    return {"directory": entry["directory"], "file": source, "command": command}


def write_joined(folder, name, group):
    """Writes the source that includes the group's, and returns its entry."""
    source = folder / f"{name}.cpp"
    source.write_text("".join(
        f'#include "{entry["file"]}"  // NOLINT(bugprone-suspicious-include)\n' for entry in group))
    return compiled_like(group[0], str(source))


def look(folder, source, *options):
    """What clang-tidy says of a source in the folder's database; None when nothing."""
    result = subprocess.run(["clang-tidy", "--quiet", "-p", str(folder), *options, source], cwd=ROOT, text=True,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
    return None if result.returncode == 0 else CHATTER.sub("", result.stdout)


def header_filter():
    """The filter of the project's headers, and the sources, which are included here."""
    settings = (ROOT / ".clang-tidy").read_text(encoding="utf-8")
    return re.search(r"^HeaderFilterRegex: '(.*)'$", settings, re.MULTILINE).group(1) + r"|/src/.*\.cpp$"


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    wanted = {str(ROOT / source) for source in sys.argv[2:]}
    database = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
    entries = list({entry["file"]: entry for entry in database if entry["file"] in wanted}.values())
    missing = wanted - {entry["file"] for entry in entries}
    if missing or not wanted:
        sys.exit(f"tidy.py: not compiled: {' '.join(sorted(missing)) or 'nothing'}")

    folder = build / "tidy"
    folder.mkdir(exist_ok=True)
    groups = list(together(entries))
    joined = [write_joined(folder, number, group) if len(group) > 1 else None
              for number, group in enumerate(groups)]
    alone = [compiled_like(entry, entry["file"]) for entry in entries]
    (folder / "compile_commands.json").write_text(json.dumps(alone + [entry for entry in joined if entry]))

    def look_at(number):
        group = groups[number]
        if joined[number] and not look(folder, joined[number]["file"], f"--header-filter={header_filter()}"):
            return []
        return [said for said in (look(folder, entry["file"]) for entry in group) if said]

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        said = [text for texts in pool.map(look_at, range(len(groups))) for text in texts]
    print("".join(said), end="")
    sys.exit(1 if said else 0)


if __name__ == "__main__":
    main()
