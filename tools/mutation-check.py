#!/usr/bin/env python3
"""Mutation check: changes one comparison or constant at a time and reports the changes that no test detects.

Every comparison, number, true and false in the sources of src/core/{audio,dsp,generator} is changed in one or two
ways ("mutants"). Each mutant is compiled and linked with the unit and loop tests, which run until one fails. A mutant
that no test detects has survived. tools/mutation/survivors.txt lists the accepted survivors with their reasons.

The check builds a copy of the sources and tests in build/mutation/tree and only reads the checked-out files. --build
uses an existing, up-to-date build instead of the copy.

Exit status 0: at most 10 % of the mutants survived, and each survivor is explained. 1: otherwise. 2: the check failed.
"""

import argparse
import collections
import concurrent.futures
import json
import os
import pathlib
import random
import shutil
import subprocess
import sys
import threading
import time

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
from mutation import mutants as finder  # noqa: E402
from mutation import programs, reach, survivors  # noqa: E402

ROOT = pathlib.Path(__file__).resolve().parent.parent
WORK = ROOT / "build" / "mutation"
KNOWN = ROOT / "tools" / "mutation" / "survivors.txt"
MOST_SURVIVORS = 0.10

KILLED, NOT_COMPILED, SURVIVED = "killed", "did not compile", "survived"


def options():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--list", action="store_true", help="list the mutants and exit")
    parser.add_argument("--only", action="append", default=[], metavar="FILE[:LINE]",
                        help="only this file (the end of its path) or line; may be repeated")
    parser.add_argument("--sample", type=int, metavar="N", help="check N randomly chosen mutants")
    parser.add_argument("--seed", type=int, help="seed of the sample; printed when not given")
    parser.add_argument("--again", action="store_true", help="only those that survived the last run")
    parser.add_argument("--exclude-known", action="store_true", help="do not check the explained survivors")
    parser.add_argument("--known", type=pathlib.Path, default=KNOWN, help="list of explained survivors")
    parser.add_argument("--build", type=pathlib.Path, metavar="FOLDER",
                        help="use this build instead of a copy of the tree")
    parser.add_argument("--work", type=pathlib.Path, default=WORK, metavar="FOLDER",
                        help="work folder; two runs at a time need two")
    parser.add_argument("--all-tests", action="store_true",
                        help="do not measure first which tests reach which function (the default with --sample)")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="mutants checked in parallel")
    return parser.parse_args()


def wanted(mutant, only):
    if not only:
        return True
    for place in only:
        path, _, line = place.partition(":")
        if mutant.path.endswith(path) and line in ("", str(mutant.line)):
            return True
    return False


def choose(found, chosen, known, earlier):
    selected = [mutant for mutant in found if wanted(mutant, chosen.only)]
    if chosen.exclude_known or chosen.sample:
        selected = [mutant for mutant in selected if mutant.key not in known]
    if chosen.again:
        selected = [mutant for mutant in selected if earlier.get(mutant.key, (SURVIVED,))[0] == SURVIVED]
    if chosen.sample:
        seed = chosen.seed if chosen.seed is not None else random.randrange(1_000_000)
        drawn = set(random.Random(seed).sample(selected, min(chosen.sample, len(selected))))
        print(f"Seed {seed}: {len(drawn)} of {len(selected)}", flush=True)
        selected = [mutant for mutant in selected if mutant in drawn]
    return selected


def copy_tree(work):
    """Updates the copy of the tree and builds the tests there."""
    tree = work / "tree"
    for name in ("CMakeLists.txt", "CMakePresets.json", "cmake", "src", "tests"):
        source = ROOT / name
        files = [path for path in source.rglob("*") if path.is_file()] if source.is_dir() else [source]
        kept = set()
        for path in files:
            target = tree / path.relative_to(ROOT)
            kept.add(target)
            if not target.exists() or target.read_bytes() != path.read_bytes():
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy2(path, target)
                os.utime(target)
        for path in (tree / name).rglob("*"):
            if path.is_file() and path not in kept:
                path.unlink()
    print("Building the copy ...", flush=True)
    folder = tree / "build" / "core-only"
    for command in (["cmake", "--preset", "core-only"],
                    ["cmake", "--build", str(folder), "--target", *programs.PROGRAMS]):
        done = subprocess.run(command, cwd=tree, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                              check=False)
        if done.returncode != 0:
            raise programs.Failed(done.stdout + done.stderr)
    return tree, folder


class Check:
    """Compiles, links and tests mutants of one build."""

    def __init__(self, root, build_folder, work, with_reach, jobs, earlier):
        self._jobs, self._work = jobs, work
        self.build = programs.Build(root, build_folder, work)
        self.build.prepare_headers()
        self.build.prepare_link()
        clean = work / "clean"
        if not self.build.link(clean, []):
            raise programs.Failed(self.build.link_output)
        self.suites = programs.Suites(clean, work)
        self.reach = reach.measured(self.build, self.suites, jobs) if with_reach else reach.Reach({})
        for key, (_, by) in earlier.items():
            if by in self.suites.files:
                self.suites.note_killer(key[0], by)
        self._texts = {}

    def text(self, path):
        if path not in self._texts:
            self._texts[path] = (self.build.root / path).read_text(encoding="utf-8")
        return self._texts[path]

    def _folder(self):
        folder = self._work / "jobs" / str(threading.get_ident())
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        return folder

    def judge(self, mutant):
        """Compiles and links the change, and runs the suites that reach it until one fails."""
        folder = self._folder()
        source, output = folder / pathlib.Path(mutant.path).name, folder / "changed.o"
        source.write_text(mutant.apply(self.text(mutant.path)), encoding="utf-8")
        if not self.build.compile_core(mutant.path, source, output):
            return NOT_COMPILED, ""
        program = folder / "tests"
        if not self.build.link(program, [output]):
            return NOT_COMPILED, "linker"
        reached = self.reach.suites(mutant)
        if reached is not None and not reached:
            return SURVIVED, "no test runs this line"
        by = programs.killer(program, self.suites, mutant, reached, folder)
        return (KILLED, by) if by else (SURVIVED, "")


def judge(check, selected, jobs, note):
    """Calls note(mutant, result) for each of the selected mutants."""
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        work = {pool.submit(check.judge, mutant): mutant for mutant in selected}
        for done in concurrent.futures.as_completed(work):
            note(work[done], done.result())


def load_results(work):
    path = work / "results.json"
    if not path.exists():
        return {}
    stored = json.loads(path.read_text(encoding="utf-8"))
    return {tuple(key): tuple(result) for key, result in stored}


def save_results(results, work):
    path = work / "results.json"
    path.with_suffix(".new").write_text(json.dumps(sorted(results.items())), encoding="utf-8")
    path.with_suffix(".new").replace(path)


def table(results):
    counts = collections.OrderedDict()
    for mutant, (status, _) in results.items():
        counts.setdefault(mutant.path, collections.Counter())[status] += 1
    print(f"\n{'file':<46}{'mutants':>8}{'killed':>8}{'survived':>10}{'did not compile':>17}")
    total = collections.Counter()
    for path, count in sorted(counts.items()):
        total += count
        print(f"{path:<46}{sum(count.values()):>8}{count[KILLED]:>8}{count[SURVIVED]:>10}{count[NOT_COMPILED]:>17}")
    print(f"{'all':<46}{sum(total.values()):>8}{total[KILLED]:>8}{total[SURVIVED]:>10}{total[NOT_COMPILED]:>17}")
    return total


def report(results, known):
    """Prints the survivors and the table. Returns the exit status."""
    lived = [mutant for mutant, (status, _) in sorted(results.items(), key=lambda r: (r[0].path, r[0].start))
             if status == SURVIVED]
    unexplained = [mutant for mutant in lived if mutant.key not in known]
    if lived:
        print("\nSurvivors:")
    for mutant in lived:
        reason = known.get(mutant.key)
        detail = results[mutant][1]
        print(f"{mutant.path}:{mutant.line}{'' if reason else '  NOT EXPLAINED'}{detail and f' ({detail})'}")
        print(survivors.write_entry(mutant))
    total = table(results)
    judged = total[KILLED] + total[SURVIVED]
    rate = total[SURVIVED] / judged if judged else 0.0
    print(f"\n{total[SURVIVED]} of {judged} survived ({100 * rate:.1f} %), {len(unexplained)} of them not explained")
    late = sum(by == "time limit" for _, by in results.values())
    if late:
        print(f"{late} of the detected mutants exceeded the time limit")
    stale = [mutant for mutant, (status, _) in results.items() if status != SURVIVED and mutant.key in known]
    for mutant in stale:
        print(f"Explained, but detected by a test: {mutant.path}:{mutant.line}: {mutant.new_line}")
    return 1 if rate > MOST_SURVIVORS or unexplained else 0


def main():
    chosen = options()
    known = survivors.read(chosen.known) if chosen.known.exists() else {}
    if chosen.list:
        for mutant in finder.find(ROOT):
            if wanted(mutant, chosen.only):
                print(f"{mutant.path}:{mutant.line}: {mutant.old_line}  =>  {mutant.new_line}")
        return 0
    since = time.monotonic()
    work = chosen.work.resolve()
    work.mkdir(parents=True, exist_ok=True)
    root, folder = (ROOT, chosen.build.resolve()) if chosen.build else copy_tree(work)
    found = finder.find(root)
    present = {mutant.key for mutant in found}
    for key in set(known) - present:
        print(f"Explained, but no longer in the sources: {key[0]}: {key[3]}")
    earlier = {key: result for key, result in load_results(work).items() if key in present}
    selected = choose(found, chosen, known, earlier)
    if not selected:
        print("No mutant is selected", file=sys.stderr)
        return 2
    check = Check(root, folder, work, not (chosen.sample or chosen.all_tests), chosen.jobs, earlier)
    print(f"Ready after {time.monotonic() - since:.0f} s; {len(selected)} of {len(found)} mutants", flush=True)

    results = {}

    def note(mutant, result):
        results[mutant] = earlier[mutant.key] = result
        if result[0] == SURVIVED:
            print(f"{len(results)}/{len(selected)} survived {mutant.path}:{mutant.line}: {mutant.new_line}", flush=True)
        elif len(results) % 50 == 0:
            print(f"{len(results)}/{len(selected)} after {time.monotonic() - since:.0f} s", flush=True)
        if not chosen.sample and len(results) % 10 == 0:
            save_results(earlier, work)

    judge(check, selected, chosen.jobs, note)
    if not chosen.sample:
        save_results(earlier, work)
    if chosen.again:
        results = {mutant: earlier[mutant.key] for mutant in found
                   if mutant.key in earlier and wanted(mutant, chosen.only)}
    if chosen.exclude_known and not chosen.sample:
        for mutant in found:
            if mutant.key in known and mutant not in results and wanted(mutant, chosen.only):
                results[mutant] = (SURVIVED, "not checked")
    status = report(results, known)
    print(f"After {time.monotonic() - since:.0f} s")
    return status


if __name__ == "__main__":
    try:
        sys.exit(main())
    except (programs.Failed, survivors.Bad) as trouble:
        print(trouble, file=sys.stderr)
        sys.exit(2)
