"""Plants uncalled functions in a small program and looks whether dead_code.py finds them.

    dead_code_test.py COMPILER [unittest arguments]
"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

COMPILER = sys.argv.pop(1)
CHECK = pathlib.Path(__file__).with_name("dead_code.py")

HEADER = """
namespace tallowcrest {
int called();
int tiny();
int calledByItsOwnFile();
int uncalled(int number);
struct Shape {
    Shape();
    virtual ~Shape() = default;
    virtual int corners() const;
    int uncalledMethod() const;
    int calledInline() const { return 4; }
    int uncalledInline() const { return 5; }
    int uncalledLikeAParameter() const { return 5; }
    int namedWithItsClass() const { return 5; }
    template <class Number> int calledWithArguments() const { return 5; }
    int uncalledOfTwo() const { return 6; }
    int calledOfTwo() const { return 7; }
};
struct Initialized {
    explicit Initialized(int uncalledLikeAParameter) : member(uncalledLikeAParameter) {}
    int member;
};
struct Uncalled {
    Uncalled();
    int uncalledOfTwo() const { return 6; }
    int calledOfTwo() const { return 7; }
};
}
"""
SHAPE = """
#include "shape.h"
namespace tallowcrest {
int called() { return 1; }
int tiny() { return 2; }
int calledByItsOwnFile() { return tiny(); }
int uncalled(int number) { return number; }  // only this comment says uncalled(1) and uncalledInline
Shape::Shape() {}
int Shape::corners() const { return calledInline() + calledOfTwo() +
    (this->*&Shape::namedWithItsClass)() + calledWithArguments<int>(); }
int Shape::uncalledMethod() const { return 3; }
Uncalled::Uncalled() {}
}
"""
MAIN = """
#include "shape.h"
int main() { return tallowcrest::called() + tallowcrest::calledByItsOwnFile() +
                    tallowcrest::Shape().corners(); }
"""
DEAD = ["tallowcrest::Shape::uncalledMethod", "tallowcrest::Uncalled::Uncalled",
        "tallowcrest::uncalled", "uncalledInline", "uncalledLikeAParameter",
        "uncalledOfTwo"]


class DeadCodeTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        for name, text in (("shape.h", HEADER), ("shape.cpp", SHAPE), ("main.cpp", MAIN)):
            (self.folder / name).write_text(text, encoding="utf-8")
        for name in ("shape", "main"):
            subprocess.run([COMPILER, "-std=c++20", "-O1", "-c", f"{name}.cpp",
                            "-o", f"{name}.cpp.o"], cwd=self.folder, check=True)
        subprocess.run(["ar", "qc", "libshape.a", "shape.cpp.o"], cwd=self.folder, check=True)

    def check(self, allowed, binaries=("libshape.a", "main.cpp.o")):
        (self.folder / "allowed.txt").write_text("\n".join(allowed), encoding="utf-8")
        return subprocess.run([sys.executable, "-B", CHECK, "allowed.txt", ".", *binaries],
                              cwd=self.folder, capture_output=True, text=True, check=False)

    def test_each_uncalled_function_is_named(self):
        result = self.check([])
        named = [line.split(": ")[0].split("(")[0] for line in result.stdout.splitlines()]
        self.assertEqual(named, DEAD, result.stdout + result.stderr)
        self.assertEqual(result.returncode, 1)

    def test_listed_functions_may_stay(self):
        result = self.check(["# Why.", "", *DEAD])
        self.assertEqual((result.stdout, result.returncode), ("", 0), result.stderr)

    def test_a_listed_function_that_is_called_or_gone_is_an_error(self):
        result = self.check(["tallowcrest::called", "tallowcrest::gone", *DEAD])
        self.assertEqual([line.split(": ")[0] for line in result.stdout.splitlines()],
                         ["tallowcrest::called", "tallowcrest::gone"], result.stderr)
        self.assertEqual(result.returncode, 1)

    def test_binaries_without_functions_of_the_project_are_an_error(self):
        (self.folder / "other.cpp").write_text("int other() { return 1; }", encoding="utf-8")
        subprocess.run([COMPILER, "-c", "other.cpp", "-o", "other.cpp.o"], cwd=self.folder,
                       check=True)
        result = self.check([], ["other.cpp.o"])
        self.assertIn("no function of this project", result.stderr)
        self.assertNotEqual(result.returncode, 0)


if __name__ == "__main__":
    unittest.main()
