#!/usr/bin/env python3
"""Which changes scripts/mutate makes of a text, and which it leaves alone."""
import importlib.machinery
import importlib.util
import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
SCRIPTS = pathlib.Path(__file__).resolve().parents[2] / "scripts"
sys.path.insert(0, str(SCRIPTS))
from mutants import mutants_of

loader = importlib.machinery.SourceFileLoader("mutate", str(SCRIPTS / "mutate"))
mutate = importlib.util.module_from_spec(importlib.util.spec_from_loader("mutate", loader))
loader.exec_module(mutate)


def lines(source):
    """What becomes of each place, "old -> new"; the first where there is a choice."""
    mutants = [place[0] for place in mutants_of("a.cpp", source)]
    return [source[m.start:m.end] + " -> " + m.new for m in mutants]


class Mutants(unittest.TestCase):
    def test_operators_between_blanks_change_and_pointers_and_templates_do_not(self):
        self.assertEqual(lines("bool f(const std::vector<int>& a, char* b)\n"
                               "{\n    return *b <= a.size() + *b && g;\n}\n"),
                         ["<= -> <", "+ -> -", "&& -> ||"])

    def test_numbers_words_and_texts_become_others(self):
        self.assertEqual(lines("int a[] = {0x1fU, 7, 1'000};\ndouble b = 0.25, c = 0.0;\n"
                               "bool d = false;\nauto e = \"x\\n\";\nchar f = ',';\n"),
                         ["0x1fU -> 0x20U", "7 -> 8", "1'000 -> 1001", "0.25 -> 0.5", "0.0 -> 1.0",
                          "false -> true", '"x\\n" -> "x\\n~"', "',' -> '~'"])

    def test_conditions_are_forced_and_loops_left_out(self):
        self.assertEqual(lines("void f()\n{\n    if (!a) {\n    } else if (b) {\n    }\n"
                               "    while (c) {\n    }\n}\n"),
                         ["!a -> true", "! -> ", "b -> true", "c -> false"])

    def test_statements_are_left_out_and_declarations_are_not(self):
        self.assertEqual(lines("void f()\n{\n    int a;\n    const auto b = c;\n    Type d(e);\n"
                               "    a = b;\n    g(a, [&] { h(); });\n    ++a;\n    return;\n}\n"),
                         ["a = b -> ", "g(a, [&] { h(); }) -> ", "h() -> ", "++a -> ", "return -> "])

    def test_the_parts_of_a_loops_head_stay(self):
        self.assertEqual(lines("void f()\n{\n    for (int i = 0; i < n; ++i) {\n        g(i);\n"
                               "    }\n    for (; i != n;) {\n    }\n}\n"),
                         ["0 -> 1", "< -> <=", "g(i) -> ", "!= -> =="])

    def test_comments_logs_assertions_and_directives_stay(self):
        self.assertEqual(lines("#include \"a 1\"\n#define B 1\n// c + 2\n/* d + 3 */\n"
                               "static_assert(f == 4, \"g\");\n"
                               "void h()\n{\n    qDebug() << 5;\n    i.reserve(6);\n}\n"), [])

    def test_the_same_seed_gives_the_same_mutants_and_another_one_others(self):
        self.assertEqual(mutate.chosen_mutants("setup", 1), mutate.chosen_mutants("setup", 1))
        self.assertNotEqual(mutate.chosen_mutants("setup", 1)[:9],
                            mutate.chosen_mutants("setup", 2)[:9])

    def test_the_copy_takes_what_changed_and_drops_what_went(self):
        with tempfile.TemporaryDirectory() as folder:
            source, target = pathlib.Path(folder, "a"), pathlib.Path(folder, "b")
            (source / "c").mkdir(parents=True)
            (source / "c/same").write_text("1")
            mutate.copy_changed(source, target)
            time = (target / "c/same").stat().st_mtime_ns
            (target / "old").mkdir()
            (source / "new").write_text("2")
            mutate.copy_changed(source, target)
            self.assertEqual(sorted(p.name for p in target.iterdir()), ["c", "new"])
            self.assertEqual((target / "c/same").stat().st_mtime_ns, time)


if __name__ == "__main__":
    unittest.main()
