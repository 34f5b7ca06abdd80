#!/usr/bin/env python3
"""Changes one comparison or constant at a time and reports what the unit tests do not notice.

Every comparison, number and true or false in src/core/{audio,dsp,generator} is a place for one change or
two ("mutants"). Each is compiled and linked with the tests, which are run until one fails. A mutant that no
test notices has survived; tools/mutation/survivors.txt explains those that may.

The sources and tests are copied to build/mutation/tree and built there; the checked-out files are only
read. With --build, a build that exists and is up to date is used in place of the copy.

Exit status 0: at most 10 % survived and all of them are explained; 1: not so; 2: it could not be found out.
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
SWITCH = "SonavexMutant"

KILLED, NOT_COMPILED, SURVIVED = "killed", "did not compile", "survived"


def options():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--list", action="store_true", help="list the mutants and end")
    parser.add_argument("--only", action="append", default=[], metavar="FILE[:LINE]",
                        help="only this file (the end of its path) or line; may be repeated")
    parser.add_argument("--sample", type=int, metavar="N", help="only N of them, of sources that are no headers")
    parser.add_argument("--seed", type=int, help="of the sample; printed when it is not given")
    parser.add_argument("--again", action="store_true", help="only those that did not die the last time")
    parser.add_argument("--exclude-known", action="store_true", help="take the explained survivors for granted")
    parser.add_argument("--known", type=pathlib.Path, default=KNOWN, help="the list of explained survivors")
    parser.add_argument("--build", type=pathlib.Path, metavar="FOLDER",
                        help="use this build in place of one of a copy of the tree")
    parser.add_argument("--work", type=pathlib.Path, default=WORK, metavar="FOLDER",
                        help="where to work, for two runs at the same time")
    parser.add_argument("--all-tests", action="store_true",
                        help="do not find out first which tests reach a change; so it is with --sample")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="how many at the same time")
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
        selected = [mutant for mutant in selected if not mutant.header]
        drawn = set(random.Random(seed).sample(selected, min(chosen.sample, len(selected))))
        print(f"Seed {seed}: {len(drawn)} of {len(selected)}", flush=True)
        selected = [mutant for mutant in selected if mutant in drawn]
    return selected


def copy_tree(work):
    """Brings the copy of the tree up to date and builds the tests there."""
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
    # Each test alone: a change of a header is judged with few of them.
    for command in (["cmake", "--preset", "core-only", "-DCMAKE_UNITY_BUILD=OFF"],
                    ["cmake", "--build", str(folder), "--target", *programs.PROGRAMS]):
        done = subprocess.run(command, cwd=tree, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                              check=False)
        if done.returncode != 0:
            raise programs.Failed(done.stdout + done.stderr)
    return tree, folder


class Check:
    """Judges mutants of one state of the sources."""

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

    def _judged(self, program, mutant, reached, folder, environment=None):
        if reached is not None and not reached:
            return SURVIVED, "no test comes here"
        by = programs.killer(program, self.suites, mutant, reached, folder, environment)
        return (KILLED, by) if by else (SURVIVED, "")

    def source(self, mutant):
        """A change in a source file: one object."""
        folder = self._folder()
        source, output = folder / pathlib.Path(mutant.path).name, folder / "changed.o"
        source.write_text(mutant.apply(self.text(mutant.path)), encoding="utf-8")
        if not self.build.compile_core(mutant.path, source, output):
            return NOT_COMPILED, ""
        program = folder / "tests"
        if not self.build.link(program, [output]):
            return NOT_COMPILED, "linker"
        return self._judged(program, mutant, self.reach.suites(mutant), folder)

    # Headers: whatever includes them is compiled again, tests too.

    def _compile_all(self, targets, overlay, folder):
        """The objects by their targets; None when one does not compile."""
        outputs = {target: folder / "objects" / target for target in targets}
        with concurrent.futures.ThreadPoolExecutor(self._jobs) as pool:
            done = pool.map(lambda target: self.build.compile_changed_header(target, overlay, outputs[target]), targets)
            return outputs if all(list(done)) else None

    def _overlay(self, folder, texts):
        for path, text in texts.items():
            header = folder / "overlay" / pathlib.Path(path).relative_to("src")
            header.parent.mkdir(parents=True, exist_ok=True)
            header.write_text(text, encoding="utf-8")
        return folder / "overlay"

    def _split(self, targets):
        tests = [name for names in self.build.objects.values() for name in names]
        return [t for t in targets if t not in tests], [t for t in targets if t in tests]

    def header(self, mutant):
        """A change in a header: first with the tests that find most in its folder, then with all of its
        folder, then with the others."""
        folder = self._folder()
        overlay = self._overlay(folder, {mutant.path: mutant.apply(self.text(mutant.path))})
        used = set(self.build.all_objects())
        parts, tests = self._split([t for t in self.build.dependents.get(mutant.path, ()) if t in used])
        best = set(self.suites.best_files(mutant.folder, 2))
        groups = {0: [], 1: [], 2: []}
        for target in tests:
            sources = self.build.sources_of(target)
            near = any(f"/unit/{mutant.folder}/" in source for source in sources)
            groups[0 if not best.isdisjoint(sources) else 1 if near else 2].append(target)
        objects = self._compile_all(parts, overlay, folder)
        if objects is None:
            return NOT_COMPILED, ""
        every = [name for names in self.build.objects.values() for name in names]
        compiled = {}
        for number, group in groups.items():
            more = self._compile_all(group, overlay, folder)
            if more is None:
                return NOT_COMPILED, ""
            compiled.update(more)
            linked = [compiled.get(name, name) for name in every] if number == 2 else list(compiled.values())
            if not group and number < 2:
                continue
            program = folder / "tests"
            if not self.build.link(program, objects.values(), linked):
                return NOT_COMPILED, "linker"
            result = self._judged(program, mutant, None, folder)
            if result[0] == KILLED:
                return result
        return SURVIVED, ""

    def prepare_switches(self, found):
        """One program with all of these changes in headers, chosen by an environment variable."""
        folder = self._work / "switches"
        shutil.rmtree(folder, ignore_errors=True)
        numbers = {mutant: number for number, mutant in enumerate(found, 1)}
        texts = {"src/core/mutant_switch.h": (
            "#pragma once\n#include <cstdlib>\n"
            f"inline bool {SWITCH}(int number) {{\n"
            '    static const char* const chosen = std::getenv("SONAVEX_MUTANT");\n'
            "    return chosen != nullptr && std::atoi(chosen) == number;\n}\n")}
        for path in dict.fromkeys(mutant.path for mutant in found):
            inside = [mutant for mutant in found if mutant.path == path]
            text = finder.with_switches(self.text(path), inside, numbers, SWITCH)
            texts[path] = text.replace("#pragma once\n", '#pragma once\n#include "core/mutant_switch.h"\n', 1)
        overlay = self._overlay(folder, texts)
        used = self.build.all_objects()
        changed = {t for path in texts for t in self.build.dependents.get(path, ())}
        parts, tests = self._split([t for t in used if t in changed])
        objects = self._compile_all(parts + tests, overlay, folder)
        if objects is None:
            raise programs.Failed("The headers do not compile with switches")
        every = [name for names in self.build.objects.values() for name in names]
        program = folder / "tests"
        if not self.build.link(program, [objects[t] for t in parts], [objects.get(name, name) for name in every]):
            raise programs.Failed(self.build.link_output)
        status, output = programs.run([str(program), "--gtest_brief=1"], folder)
        if status != 0:
            raise programs.Failed(f"The tests fail with all switches off:\n{output[-3000:]}")
        self._switched, self._numbers = program, numbers

    def switched(self, mutant):
        environment = {"SONAVEX_MUTANT": str(self._numbers[mutant])}
        return self._judged(self._switched, mutant, None, self._folder(), environment)


def judge(check, selected, jobs, note):
    """Calls note(mutant, result) for each: sources first, then headers."""
    def at_once(function, some):
        with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
            work = {pool.submit(function, mutant): mutant for mutant in some}
            for done in concurrent.futures.as_completed(work):
                note(work[done], done.result())

    at_once(check.source, [mutant for mutant in selected if not mutant.header])
    headers = [mutant for mutant in selected if mutant.header]
    if headers:
        check.build.prepare_library_headers()
    switchable = [mutant for mutant in headers if finder.switchable(mutant, check.text(mutant.path))]
    if switchable:
        print(f"Building {len(switchable)} changes of headers ...", flush=True)
        check.prepare_switches(switchable)
        at_once(check.switched, switchable)
    for mutant in headers:
        if mutant not in switchable:
            note(mutant, check.header(mutant))


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
    """Exit status."""
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
        print(f"{late} of the others took longer than their time limit")
    stale = [mutant for mutant, (status, _) in results.items() if status != SURVIVED and mutant.key in known]
    for mutant in stale:
        print(f"Explained, but it does not survive: {mutant.path}:{mutant.line}: {mutant.new_line}")
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
        print(f"Explained, but no longer there: {key[0]}: {key[3]}")
    earlier = {key: result for key, result in load_results(work).items() if key in present}
    selected = choose(found, chosen, known, earlier)
    if not selected:
        print("There is nothing to change", file=sys.stderr)
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
                results[mutant] = (SURVIVED, "not tried again")
    status = report(results, known)
    print(f"After {time.monotonic() - since:.0f} s")
    return status


if __name__ == "__main__":
    try:
        sys.exit(main())
    except (programs.Failed, survivors.Bad) as trouble:
        print(trouble, file=sys.stderr)
        sys.exit(2)
