"""Compiles single sources of a finished build anew, links the tests with them, and runs the tests."""

import hashlib
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

# Tests of the adapters cannot judge the folders that are changed here, and some of them measure real time.
_NOT_USED = ("tests/unit/platform/",)
_QUICK_S = 0.06
_UNOPTIMISED = ("-O0", "-g0", "-w", "-D_GLIBCXX_ASSERTIONS")
_MEMORY = 4 << 30
_FILE_SIZE = 1 << 30


class Failed(Exception):
    """Something that has to work does not."""


def _limits():
    resource.setrlimit(resource.RLIMIT_AS, (_MEMORY, _MEMORY))
    resource.setrlimit(resource.RLIMIT_FSIZE, (_FILE_SIZE, _FILE_SIZE))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def run(command, folder, limit_s=None, environment=None):
    """Exit status (None: it took longer than the limit) and output."""
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
    """A build folder whose tests are up to date, and what is known about its sources and objects."""

    def __init__(self, root, folder, work):
        self.root, self.folder, self.work = pathlib.Path(root), pathlib.Path(folder), pathlib.Path(work)
        self.work.mkdir(parents=True, exist_ok=True)
        entries = json.loads((self.folder / "compile_commands.json").read_text(encoding="utf-8"))
        self._commands = {}
        for entry in entries:
            words = shlex.split(entry["command"])
            self._commands[words[words.index("-o") + 1]] = words
        self._read_links()
        self._read_dependencies()
        self._fits, self._lock = {}, threading.Lock()
        self._linker = "lld" if shutil.which("ld.lld") else "gold"

    def _ninja(self, *arguments):
        return must_run(["ninja", *arguments], self.folder)

    def _read_links(self):
        self.objects, self.libraries = {}, []
        for program in PROGRAMS:
            line = self._ninja("-t", "commands", program).strip().split("\n")[-1]
            words = shlex.split(line.replace(": && ", "").replace(" && :", ""))
            at = words.index("-o")
            self.objects[program] = [word for word in words[:at] if word.endswith(".o")]
            self.libraries += [word for word in words[at + 2 :] if re.search(r"\.(a|so)$", word)]
        self.members = {}
        for library in dict.fromkeys(self.libraries):
            if not library.startswith("/"):
                listed = self._ninja("-t", "query", library)
                self.members[library] = re.findall(r"^\s+(\S+\.o)$", listed.split("outputs:")[0], re.MULTILINE)

    def _read_dependencies(self):
        """Objects by the headers and sources of the project that they are made of."""
        self.dependents, target = {}, None
        prefix = str(self.root) + "/"
        for line in self._ninja("-t", "deps").split("\n"):
            if "#deps" in line:
                target = line.split(":")[0]
            elif target and line.strip():
                path = os.path.normpath(self.folder / line.strip())
                if path.startswith(prefix):
                    self.dependents.setdefault(path[len(prefix) :], []).append(target)

    def all_objects(self):
        """Objects of both programs, and of the project's libraries in them."""
        found = [name for program in PROGRAMS for name in self.objects[program]]
        return list(dict.fromkeys(found + [name for names in self.members.values() for name in names]))

    def sources_of(self, target):
        """The sources that an object is made of: tests are compiled several at once."""
        compiled = pathlib.Path(self._commands[target][-1])
        joined = re.findall(r'^#include "(.*)"', compiled.read_text(encoding="utf-8"), re.MULTILINE)
        of_unity = compiled.parent.name == "Unity"
        return [os.path.relpath(path, self.root) for path in (joined if of_unity else [compiled])]

    def core_object(self, path):
        """The object that the core has of a source."""
        return next(name for name in self.dependents[path] if "sonavex_core.dir" in name)

    # Compiling.

    def prepare_headers(self):
        """All headers of the core compiled once, for sources of the core."""
        folder = self.work / "headers"
        folder.mkdir(exist_ok=True)
        headers = sorted(path.relative_to(self.root / "src") for path in (self.root / "src/core").rglob("*.h"))
        header = folder / "core.h"
        header.write_text("".join(f'#include "{path}"\n' for path in headers), encoding="utf-8")
        words = self._core_words(self.core_object("src/core/dsp/modDSP.cpp"))
        must_run([*words, "-x", "c++-header", str(header), "-o", f"{header}.gch"], self.folder)
        self._core_header = header

    def _core_words(self, target):
        """The command for an object of the core up to its output: quickly, and with checked indices."""
        words = self._commands[target]
        level = "-O3" if "-O3" in words else "-O1"
        return [*words[: words.index("-o")], level, "-g0", "-w", "-D_GLIBCXX_ASSERTIONS"]

    def _with_headers(self, path):
        """Whether the source can do with the compiled headers: names of other files may be in its way."""
        with self._lock:
            if path not in self._fits:
                words = self._core_words(self.core_object(path))
                status, _ = run([*words, "-include", str(self._core_header), "-fsyntax-only", str(self.root / path)],
                                self.folder)
                self._fits[path] = status == 0 and "-O3" not in words
            return self._fits[path]

    def compile_core(self, path, source, output, more=()):
        """Compiles the changed copy `source` of the core's file `path`. Whether that worked."""
        words = self._core_words(self.core_object(path))
        headers = ("-include", str(self._core_header)) if self._with_headers(path) else ()
        status, _ = run([*words, *headers, *more, "-o", str(output), "-c", str(source)], self.folder)
        return status == 0

    def prepare_library_headers(self):
        """The library's headers of the core compiled once, for sources that include changed headers."""
        names = set()
        for path in (self.root / "src/core").rglob("*.h"):
            names.update(re.findall(r"^#include (<.*>)", path.read_text(encoding="utf-8"), re.MULTILINE))
        header = self.work / "headers" / "library.h"
        header.write_text("".join(f"#include {name}\n" for name in sorted(names)), encoding="utf-8")
        words = self._commands[self.core_object("src/core/dsp/modDSP.cpp")]
        must_run([*words[: words.index("-o")], *_UNOPTIMISED, "-x", "c++-header", str(header), "-o", f"{header}.gch"],
                 self.folder)
        self._library_header = header

    def compile_changed_header(self, target, overlay, output):
        """Compiles an object's own source with the headers in `overlay` in place of the tree's."""
        words = self._commands[target]
        at = words.index("-o")
        more = [*_UNOPTIMISED, "-include", str(self._library_header)]
        if "-O3" in words or "sonavex_test_headers" in " ".join(words):  # with headers of its own, or none
            more = ["-w"]
        output.parent.mkdir(parents=True, exist_ok=True)
        command = [words[0], f"-I{overlay}", *words[1:at], *more, "-o", str(output), *words[at + 2 :]]
        status, _ = run(command, self.folder)
        return status == 0

    # Linking.

    def prepare_link(self):
        """All test objects as one, and libraries without debug information."""
        folder = self.work / "link"
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir()
        tests = [name for program in PROGRAMS for name in self.objects[program]]
        self._tests = folder / "tests.o"
        must_run(["ld", "-r", "-S", "-o", str(self._tests), *tests], self.folder)
        self._link_libraries = []
        for library in self.libraries:
            if library.startswith("/"):
                self._link_libraries.append(library)
                continue
            copy = folder / pathlib.Path(library).name
            shutil.copy2(self.folder / library, copy)
            must_run(["strip", "-S", str(copy)], self.folder)
            self._link_libraries.append(str(copy))

    def link(self, program, objects, tests=None, more=()):
        """Links the tests (all, or these objects) with `objects` in place of the libraries' members.
        Whether that worked."""
        inputs = [str(name) for name in (tests if tests is not None else [self._tests])]
        command = ["c++", f"-fuse-ld={self._linker}", *more, *map(str, objects), *inputs, "-Wl,--start-group",
                   *self._link_libraries, "-Wl,--end-group", "-o", str(program)]
        status, output = run(command, self.folder)
        self.link_output = output
        return status == 0


class Suites:
    """The tests in the order in which they are asked."""

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
        """Lists of suites: what has found most in this file, the quick ones of the same folder, the other
        quick ones, the slow ones."""
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

    def best_files(self, folder, count):
        """The test files that have found most in a folder."""
        found = {}
        with self._lock:
            for path, names in self._killers.items():
                if path.split("/")[2] == folder:
                    for name, times in names.items():
                        found[self.files[name]] = found.get(self.files[name], 0) + times
        return sorted(found, key=lambda path: -found[path])[:count]

    def note_killer(self, path, name):
        with self._lock:
            found = self._killers.setdefault(path, {})
            found[name] = found.get(name, 0) + 1


def killer(program, suites, mutant, reached, folder, environment=None):
    """What noticed the change: a test, a crash or the time limit. Empty when nothing did."""
    for stage in suites.stages(mutant, reached):
        limit_s = 5.0 * sum(suites.times[name] for name in stage) + 3.0
        chosen = ":".join(f"{name}.*" for name in stage)
        status, output = run([str(program), "--gtest_fail_fast", "--gtest_brief=1", f"--gtest_filter={chosen}"],
                             folder, limit_s, environment)
        if status == 0:
            continue
        failed = re.findall(r"\[  FAILED  \] ([\w/]+)\.[\w/]+", output)
        if failed and failed[0] in suites.times:
            suites.note_killer(mutant.path, failed[0])
        return failed[0] if failed else "time limit" if status is None else "crash"
    return ""


def digest(paths):
    total = hashlib.sha256()
    for path in paths:
        total.update(str(path).encode() + b"\0" + path.read_bytes())
    return total.hexdigest()
