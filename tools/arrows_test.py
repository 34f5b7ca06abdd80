"""Tests of tools/arrows.py on small temporary source trees."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

ARROWS = pathlib.Path(__file__).resolve().parents[1] / "tools/arrows.py"
TABLE = """# low is below high.
low:
high: low
all: low high
"""


class Arrows(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name) / "src"
        self.write("low/A.h", "#pragma once\n")
        self.write("high/B.h", '#pragma once\n#include <string>\n\n#include "low/A.h"\n')
        self.write("high/B.cpp", '#include "high/B.h"\n')
        self.write("all/Main.cpp", '#include "high/B.h"\n#include "low/A.h"\n')

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def check(self, table=TABLE):
        """The exit status and the lines that the check prints, with paths from the tree."""
        path = self.root.parent / "arrows.txt"
        path.write_text(table, encoding="utf-8")
        done = subprocess.run([sys.executable, ARROWS, path, self.root], stdout=subprocess.PIPE, text=True, check=False)
        return done.returncode, done.stdout.replace(f"{self.root}/", "").splitlines()

    def test_allowed_includes_pass(self):
        self.assertEqual(self.check(), (0, []))

    def test_a_forbidden_include_is_named_with_its_file_and_line(self):
        self.write("low/A.cpp", '#include "low/A.h"\n\n#include "high/B.h"\n')
        self.assertEqual(self.check(), (1, ['low/A.cpp:3: low must not include "high/B.h"']))

    def test_angle_brackets_hide_no_include_of_the_project(self):
        self.write("low/A.cpp", "#include <high/B.h>\n")
        self.assertEqual(self.check(), (1, ['low/A.cpp:1: low must not include "high/B.h"']))

    def test_subfolders_are_folders(self):
        self.write("low/part/C.h", '#pragma once\n#include "low/A.h"\n')
        self.assertEqual(self.check()[1], ["low/part: is not in the table"])
        self.assertEqual(self.check(TABLE + "low/part: low\n"), (0, []))
        self.assertEqual(self.check(TABLE + "low/part:\n"), (1, ['low/part/C.h:2: low/part must not include "low/A.h"']))

    def test_headers_made_from_forms_belong_to_ui(self):
        self.write("ui/Window.cpp", '#include "ui_Window.h"\n')
        self.write("low/A.cpp", '#include "ui_Window.h"\n')
        self.assertEqual(self.check(TABLE + "ui:\n"), (1, ['low/A.cpp:1: low must not include "ui_Window.h"']))

    def test_paths_start_at_the_root_of_the_sources(self):
        self.write("low/A.cpp", '#include "../high/B.h"\n')
        self.assertEqual(self.check()[0], 1)

    def test_a_cycle_in_the_table_fails(self):
        self.write("low/A.cpp", '#include "high/B.h"\n')
        self.assertEqual(self.check("low: high\nhigh: low\nall: low high\n"),
                         (1, ["The table has a cycle: low -> high -> low"]))

    def test_an_edge_that_no_include_uses_fails(self):
        self.write("all/Main.cpp", '#include "high/B.h"\n')
        self.assertEqual(self.check(), (1, ["The table allows all to include low, but no include does"]))

    def test_rows_without_sources_fail(self):
        self.assertEqual(self.check(TABLE + "gone: low\n"), (1, ["gone: is in the table but has no sources"]))

    def test_a_tree_without_sources_fails(self):
        for path in sorted(self.root.rglob("*.*")):
            path.unlink()
        self.assertEqual(self.check("")[0], 1)


if __name__ == "__main__":
    unittest.main()
