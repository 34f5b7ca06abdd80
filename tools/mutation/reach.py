"""Which tests reach which functions: line coverage of the changed folders, one suite of tests at a time."""

import concurrent.futures
import json
import shutil

from mutation import programs
from mutation.mutants import FOLDERS


class Reach:
    """What the suites run. `ran`: by suite, [path, first line, last line, whether it ran] of functions."""

    def __init__(self, ran):
        self._functions = {}  # by path and lines: suites
        for name, functions in ran.items():
            for path, first, last, executed in functions:
                names = self._functions.setdefault(path, {}).setdefault((first, last), set())
                if executed:
                    names.add(name)

    def suites(self, mutant):
        """The suites that run a function around the line. Outside of functions: that run anything of the
        file. None: it is not known."""
        functions = self._functions.get(mutant.path)
        if mutant.header or not functions:
            return None
        around = [names for (first, last), names in functions.items() if first <= mutant.line <= last]
        return set().union(*(around or functions.values()))


class _Coverage:
    """The tests with line coverage of the changed folders."""

    def __init__(self, build):
        self._root, self._folder = build.root, build.work / "coverage"
        self._program = self._folder / "tests"
        self._build = build

    def compile(self, jobs):
        shutil.rmtree(self._folder, ignore_errors=True)
        self._folder.mkdir()
        paths = [path for path in sorted(self._build.dependents)
                 if path.startswith(FOLDERS) and path.endswith(".cpp")]
        objects = [self._folder / (path.replace("/", "-")[:-4] + ".o") for path in paths]

        def compile_one(path, output):
            return self._build.compile_core(path, self._root / path, output, ("-O0", "--coverage"))

        with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
            if not all(pool.map(compile_one, paths, objects)):
                raise programs.Failed("The core does not compile with coverage")
        if not self._build.link(self._program, objects, more=("--coverage",)):
            raise programs.Failed(self._build.link_output)

    def run(self, name):
        """The functions, and whether this suite ran them."""
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


def measured(build, suites, jobs):
    """Measures those suites whose tests have changed since the last time; all after a change of the core."""
    sources = programs.digest(sorted(path for path in (build.root / "src").rglob("*") if path.is_file()))
    store = build.work / "reach.json"
    stored = json.loads(store.read_text(encoding="utf-8")) if store.exists() else {}
    kept = stored.get("suites", {}) if stored.get("sources") == sources else {}
    states = {name: programs.digest([build.root / path]) for name, path in suites.files.items()}
    ran = {name: kept[name] for name in states if name in kept and kept[name][0] == states[name]}
    missing = [name for name in states if name not in ran]
    coverage = _Coverage(build)
    if missing:
        print(f"Measuring what {len(missing)} suites reach ...", flush=True)
        coverage.compile(jobs)
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        for name, functions in zip(missing, pool.map(coverage.run, missing)):
            ran[name] = (states[name], functions)
    store.write_text(json.dumps({"sources": sources, "suites": ran}), encoding="utf-8")
    return Reach({name: functions for name, (_, functions) in ran.items()})
