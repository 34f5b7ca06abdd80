"""Tests of the mutation check: the changes that it finds, and the list of explained survivors."""

import pathlib
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "tools"))
from mutation import mutants, survivors  # noqa: E402


def changed(text):
    return [mutant.new_line for mutant in mutants.find_in_text("src/core/dsp/A.cpp", text)]


class Finder(unittest.TestCase):
    def test_comparisons_move_their_boundary_and_are_reversed(self):
        self.assertEqual(changed("a < b"), ["a <= b", "a >= b"])
        self.assertEqual(changed("a <= b"), ["a < b", "a > b"])
        self.assertEqual(changed("a > b"), ["a >= b", "a <= b"])
        self.assertEqual(changed("a >= b"), ["a > b", "a < b"])
        self.assertEqual(changed("a == b"), ["a != b"])
        self.assertEqual(changed("a != b"), ["a == b"])

    def test_numbers(self):
        self.assertEqual(changed("x = 0;"), ["x = 1;"])
        self.assertEqual(changed("x = 1;"), ["x = 0;", "x = 2;"])
        self.assertEqual(changed("x = 1'000;"), ["x = 999;", "x = 1001;"])
        self.assertEqual(changed("x = 0x7fffU;"), ["x = 0x7ffeU;", "x = 0x8000U;"])
        self.assertEqual(changed("x = 100ms;"), ["x = 99ms;", "x = 101ms;"])
        self.assertEqual(changed("x = 0.0F;"), ["x = 0.01F;"])
        self.assertEqual(changed("x = 1e6;"), ["x = 1010000.01;"])

    def test_true_and_false(self):
        self.assertEqual(changed("x = true;"), ["x = false;"])
        self.assertEqual(changed("x = false;"), ["x = true;"])

    def test_template_brackets_are_no_comparisons(self):
        self.assertEqual(changed("std::array<int, 5> a;"), ["std::array<int, 4> a;", "std::array<int, 6> a;"])
        self.assertEqual(changed("template <typename T> f(p->a << b >> c);"), [])

    def test_texts_comments_and_directives_are_not_changed(self):
        for text in ('"1 < 2"', "'1'", "// 1 < 2", "/* 1\n 2 */", "#if A < 2", 'R"(1 < 2)"', "[[likely(1)]]",
                     "static_assert(a == 4096);", "name1"):
            self.assertEqual(changed(text), [], text)

    def test_equal_lines_are_numbered(self):
        found = mutants.find_in_text("src/core/dsp/A.cpp", "f(a == b);\n  f(a == b);\n")
        self.assertEqual([(m.line, m.occurrence, m.old_line) for m in found],
                         [(1, 1, "f(a == b);"), (2, 2, "f(a == b);")])
        self.assertEqual(found[1].apply("f(a == b);\n  f(a == b);\n"), "f(a == b);\n  f(a != b);\n")


class Survivors(unittest.TestCase):
    def read(self, text):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "survivors.txt"
            path.write_text(text, encoding="utf-8")
            return survivors.read(path)

    def test_are_read_as_they_are_written(self):
        for mutant in mutants.find_in_text("src/core/dsp/A.cpp", "f(a < 1);\nf(a < 1);\n"):
            text = f"because one\n  two\n{mutant.path}\n{survivors.write_entry(mutant)}\n"
            self.assertEqual(self.read(text), {mutant.key: "one two"})

    def test_of_the_project_exist_in_the_sources(self):
        explained = survivors.read(ROOT / "tools/mutation/survivors.txt")
        self.assertGreater(len(explained), 0)
        self.assertEqual(set(explained) - {mutant.key for mutant in mutants.find(ROOT)}, set())

    def test_without_a_reason_are_rejected(self):
        with self.assertRaises(survivors.Bad):
            self.read("src/core/dsp/A.cpp\n- a\n+ b\n")


if __name__ == "__main__":
    unittest.main()
