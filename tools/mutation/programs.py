"""Compiles changed sources with the commands of a finished build, links them with the tests, runs the tests."""

import json
import os
import pathlib
import re
import resource
import shlex
import shutil
import signal
import subprocess
import tempfile
import threading

PROGRAMS = ("sonavex-unit-tests", "sonavex-loop-tests")

# Tests of adapters: they reach the changed folders only indirectly, and some depend on real time.
_NOT_USED = ("tests/unit/platform/",)
_QUICK_S = 0.06
_MEMORY = 4 << 30
_FILE_SIZE = 1 << 30


class Failed(Exception):
    """A step without any change in the sources failed."""


def _limits():
    resource.setrlimit(resource.RLIMIT_AS, (_MEMORY, _MEMORY))
    resource.setrlimit(resource.RLIMIT_FSIZE, (_FILE_SIZE, _FILE_SIZE))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def run(command, folder, limit_s=None, environment=None):
    """Exit status (None after the time limit) and output."""
    with tempfile.TemporaryFile(dir=folder) as output:
        with subprocess.Popen(command, cwd=folder, stdin=subprocess.DEVNULL, stdout=output, stderr=output,
                              env={**os.environ, **(environment or {})}, start_new_session=True,
                              preexec_fn=_limits) as process:
            try:
                status = process.wait(limit_s)
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                return None, ""
        output.seek(0)
        return status, output.read().decode(errors="replace")


def must_run(command, folder, environment=None):
    status, output = run(command, folder, environment=environment)
    if status != 0:
        raise Failed(f"{shlex.join(map(str, command))}\n{output}")
    return output


class Build:
    """A finished build of the tests: its compile commands, objects and libraries."""

    def __init__(self, root, folder, work):
        self.root, self.folder, self.work = pathlib.Path(root), pathlib.Path(folder), pathlib.Path(work)
        self.work.mkdir(parents=True, exist_ok=True)
        self._read_commands()
        self._read_links()
        self._fits, self._lock = {}, threading.Lock()
        self._linker = "lld" if shutil.which("ld.lld") else "gold"

    def _read_commands(self):
        """The compile commands of the core's sources, by the path from the root."""
        entries = json.loads((self.folder / "compile_commands.json").read_text(encoding="utf-8"))
        self._commands = {os.path.relpath(entry["file"], self.root): shlex.split(entry["command"])
                          for entry in entries if "sonavex_core.dir" in entry["command"]}

    def _read_links(self):
        """The test programs' objects, and the libraries that they are linked with."""
        self._tests, self._libraries = [], []
        for program in PROGRAMS:
            line = must_run(["ninja", "-t", "commands", program], self.folder).strip().split("\n")[-1]
            words = shlex.split(line.replace(": && ", "").replace(" && :", ""))
            at = words.index("-o")
            self._tests += [word for word in words[:at] if word.endswith(".o")]
            self._libraries += [word for word in words[at + 2 :] if re.search(r"\.(a|so)$", word)]

    # Compiling.

    def prepare_headers(self):
        """Precompiles all headers of the core."""
        folder = self.work / "headers"
        folder.mkdir(exist_ok=True)
        headers = sorted(path.relative_to(self.root / "src") for path in (self.root / "src/core").rglob("*.h"))
        header = folder / "core.h"
        header.write_text("".join(f'#include "{path}"\n' for path in headers), encoding="utf-8")
        words = self._core_words(next(iter(sorted(self._commands))))
        must_run([*words, "-x", "c++-header", str(header), "-o", f"{header}.gch"], self.folder)
        self._core_header = header

    def _core_words(self, path):
        """The compile command of a source up to its output: optimised for compile time, with checked indices."""
        words = self._commands[path]
        level = "-O3" if "-O3" in words else "-O1"
        return [*words[: words.index("-o")], level, "-g0", "-w", "-D_GLIBCXX_ASSERTIONS"]

    def _with_headers(self, path):
        """Whether the source compiles with the precompiled headers. Names of headers that it does not include itself
        can make it ambiguous."""
        with self._lock:
            if path not in self._fits:
                words = self._core_words(path)
                status, _ = run([*words, "-include", str(self._core_header), "-fsyntax-only", str(self.root / path)],
                                self.folder)
                self._fits[path] = status == 0 and "-O3" not in words
            return self._fits[path]

    def compile_core(self, path, source, output, more=()):
        """Compiles `source`, a changed copy of the core's file `path`. Returns whether that succeeded."""
        headers = ("-include", str(self._core_header)) if self._with_headers(path) else ()
        command = [*self._core_words(path), *headers, *more, "-o", str(output), "-c", str(source)]
        return run(command, self.folder)[0] == 0

    # Linking.

    def prepare_link(self):
        """Joins all test objects into one, and strips debug information from it and from the libraries."""
        folder = self.work / "link"
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir()
        self._test_object = folder / "tests.o"
        must_run(["ld", "-r", "-S", "-o", str(self._test_object), *self._tests], self.folder)
        self._link_libraries = []
        for library in self._libraries:
            if library.startswith("/"):
                self._link_libraries.append(library)
                continue
            copy = folder / pathlib.Path(library).name
            shutil.copy2(self.folder / library, copy)
            must_run(["strip", "-S", str(copy)], self.folder)
            self._link_libraries.append(str(copy))

    def link(self, program, objects, more=()):
        """Links the tests with `objects` in place of the libraries' members. Returns whether that succeeded."""
        command = ["c++", f"-fuse-ld={self._linker}", *more, *map(str, objects), str(self._test_object),
                   "-Wl,--start-group", *self._link_libraries, "-Wl,--end-group", "-o", str(program)]
        status, self.link_output = run(command, self.folder)
        return status == 0


class Suites:
    """The suites of the tests, their running times, and which suite detected changes in which file."""

    def __init__(self, program, work):
        report = pathlib.Path(work) / "clean.json"
        status, output = run([str(program), f"--gtest_output=json:{report}"], work)
        if status != 0:
            raise Failed(f"The tests fail without a change:\n{output[-3000:]}")
        self.times, self.files = {}, {}
        for suite in json.loads(report.read_text(encoding="utf-8"))["testsuites"]:
            tests = suite["testsuite"]
            path = re.sub(r".*/(tests/)", r"\1", tests[0]["file"])
            if path.startswith(_NOT_USED):
                continue
            self.times[suite["name"]] = sum(float(test["time"].rstrip("s")) for test in tests)
            self.files[suite["name"]] = path
        self._killers, self._lock = {}, threading.Lock()

    def stages(self, mutant, reached=None):
        """Lists of suites in the order in which they run: those that detected most changes in this file, the fast
        ones of the same folder, the other fast ones, the slow ones."""
        usable = [name for name in self.times if reached is None or name in reached]
        with self._lock:
            found = self._killers.get(mutant.path, {})
            first = sorted((name for name in usable if found.get(name)), key=lambda name: -found[name])[:3]
        home = f"tests/unit/{mutant.folder}/"
        quick = [name for name in usable if self.times[name] < _QUICK_S and name not in first]
        stages = [first, [name for name in quick if self.files[name].startswith(home)],
                  [name for name in quick if not self.files[name].startswith(home)],
                  [name for name in usable if self.times[name] >= _QUICK_S and name not in first]]
        return [stage for stage in stages if stage]

    def note_killer(self, path, name):
        with self._lock:
            found = self._killers.setdefault(path, {})
            found[name] = found.get(name, 0) + 1


def killer(program, suites, mutant, reached, folder):
    """What detected the change: a suite, a crash or the time limit. Empty when nothing did."""
    for stage in suites.stages(mutant, reached):
        limit_s = 5.0 * sum(suites.times[name] for name in stage) + 3.0
        chosen = ":".join(f"{name}.*" for name in stage)
        status, output = run([str(program), "--gtest_fail_fast", "--gtest_brief=1", f"--gtest_filter={chosen}"],
                             folder, limit_s)
        if status == 0:
            continue
        failed = re.findall(r"\[  FAILED  \] ([\w/]+)\.[\w/]+", output)
        if failed and failed[0] in suites.times:
            suites.note_killer(mutant.path, failed[0])
        return failed[0] if failed else "time limit" if status is None else "crash"
    return ""
