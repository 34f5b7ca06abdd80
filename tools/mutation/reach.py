"""Measures which suites run which functions of the changed folders, by line coverage of one suite at a time."""

import concurrent.futures
import hashlib
import json
import shutil

from mutation import mutants, programs


class Reach:
    """What the suites run. `ran` has for each suite a list of functions: path, first line, last line, executed."""

    def __init__(self, ran):
        self._functions = {}  # by path and lines: suites
        for name, functions in ran.items():
            for path, first, last, executed in functions:
                names = self._functions.setdefault(path, {}).setdefault((first, last), set())
                if executed:
                    names.add(name)

    def suites(self, mutant):
        """The suites that run the function around the changed line. For a line outside of functions: those that run
        any function of the file. None when that was not measured."""
        functions = self._functions.get(mutant.path)
        if not functions:
            return None
        around = [names for (first, last), names in functions.items() if first <= mutant.line <= last]
        return set().union(*(around or functions.values()))


class _Coverage:
    """The tests, linked with changed folders that are compiled for line coverage."""

    def __init__(self, build):
        self._root, self._folder = build.root, build.work / "coverage"
        self._program = self._folder / "tests"
        self._build = build

    def compile(self, jobs):
        shutil.rmtree(self._folder, ignore_errors=True)
        self._folder.mkdir()
        paths = [str(path.relative_to(self._root)) for path in mutants.sources(self._root)]
        objects = [self._folder / (path.replace("/", "-")[:-4] + ".o") for path in paths]

        def compile_one(path, output):
            return self._build.compile_core(path, self._root / path, output, ("-O0", "--coverage"))

        with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
            if not all(pool.map(compile_one, paths, objects)):
                raise programs.Failed("The core does not compile with coverage")
        if not self._build.link(self._program, objects, more=("--coverage",)):
            raise programs.Failed(self._build.link_output)

    def run(self, name):
        """Runs one suite. Returns the functions, and whether the suite executed them."""
        folder = self._folder / name.replace("/", "-")
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        for note in self._folder.glob("*.gcno"):
            (folder / note.name).symlink_to(note)
        status, output = programs.run([str(self._program), f"--gtest_filter={name}.*"], folder,
                                      environment={"GCOV_PREFIX": str(folder), "GCOV_PREFIX_STRIP": "99"})
        if status != 0:
            raise programs.Failed(f"{name} fails with coverage:\n{output[-3000:]}")
        data = sorted(path.name for path in folder.glob("*.gcda"))
        listed = programs.must_run(["gcov", "--json-format", "--stdout", *data], folder) if data else ""
        shutil.rmtree(folder)
        prefix = str(self._root) + "/"
        files = [source for line in listed.split("\n") if line.startswith("{") for source in json.loads(line)["files"]]
        return [(source["file"].split(prefix)[-1], function["start_line"], function["end_line"],
                 function["execution_count"] > 0) for source in files for function in source["functions"]
                if source["file"].startswith(prefix)]


def _digest(paths):
    total = hashlib.sha256()
    for path in paths:
        total.update(str(path).encode() + b"\0" + path.read_bytes())
    return total.hexdigest()


def measured(build, suites, jobs):
    """Measures the suites whose sources have changed since the last time; all of them after a change under src."""
    sources = _digest(sorted(path for path in (build.root / "src").rglob("*") if path.is_file()))
    store = build.work / "reach.json"
    stored = json.loads(store.read_text(encoding="utf-8")) if store.exists() else {}
    kept = stored.get("suites", {}) if stored.get("sources") == sources else {}
    states = {name: _digest([build.root / path]) for name, path in suites.files.items()}
    ran = {name: kept[name] for name in states if name in kept and kept[name][0] == states[name]}
    missing = [name for name in states if name not in ran]
    coverage = _Coverage(build)
    if missing:
        print(f"Measuring the coverage of {len(missing)} suites ...", flush=True)
        coverage.compile(jobs)
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        for name, functions in zip(missing, pool.map(coverage.run, missing)):
            ran[name] = (states[name], functions)
    store.write_text(json.dumps({"sources": sources, "suites": ran}), encoding="utf-8")
    return Reach({name: functions for name, (_, functions) in ran.items()})
