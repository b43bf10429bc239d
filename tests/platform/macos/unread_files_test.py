"""Tests of what scripts/macos-check says of files that no compiler on this system reads.

    unread_files_test.py PROJECT
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest


class UnreadFiles(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.copy = pathlib.Path(folder.name)
        (self.copy / "scripts").mkdir()
        shutil.copy(PROJECT / "scripts/macos-check", self.copy / "scripts")
        shutil.copy(PROJECT / "CMakeLists.txt", self.copy)
        for folder in ("src", "cmake"):
            shutil.copytree(PROJECT / folder, self.copy / folder)
        # Nothing is to be read from there.
        self.silent, writer = os.pipe()
        self.addCleanup(os.close, self.silent)
        self.addCleanup(os.close, writer)
        self.folder = self.copy / "src/platform/desktop"
        self.file = self.folder / "desktop_services_macos.mm"

    def complaint(self):
        result = subprocess.run([self.copy / "scripts/macos-check", "unread"], stdin=self.silent,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                                check=False, timeout=60)
        self.assertEqual((result.returncode, result.stdout), (1 if result.stderr else 0, ""))
        return result.stderr

    def add(self, text):
        self.file.write_text(text + self.file.read_text(encoding="utf-8"), encoding="utf-8")

    def test_those_of_this_system(self):
        self.assertEqual(self.complaint(), "")

    def test_each_line_that_nothing_here_follows(self):
        text = self.file.read_text(encoding="utf-8")
        for line, complaint in (
                ("#include <sys/epoll.h>", "includes <sys/epoll.h>, which is not among those"),
                (" # import  <Cocoa/Cocoa.h>", "includes <Cocoa/Cocoa.h>, which is not"),
                ('#include "platform/gone.h"', 'includes "platform/gone.h", which is not there'),
                ('#include "platform/secrets/g_handles.h"',
                 'includes "platform/secrets/g_handles.h", which cmake/macos_check/'),
                ("@import AppKit;", "has the line '@import AppKit;'"),
                ("@ import AppKit;", "has the line '@ import AppKit;'"),
                ("import <sys/epoll.h>;", "has the line 'import <sys/epoll.h>;'"),
                ('_Pragma("clang module import AppKit")', "has the line '_Pragma("),
                ("#if 0", "has the line '#if 0'"),
                ("  # define INSTEAD", "has the line '  # define INSTEAD'"),
                ("%:if 0", "has the line '%:if 0'"),
                ("int one; /*", "has the line 'int one; /*'"),
                ('const char* text = R"(', 'has the line \'const char* text = R"('),
                ("/**/ #include <sys/epoll.h>", "has the line '/**/ #include <sys/epoll.h>'"),
                ("# /**/ import <Cocoa/Cocoa.h>", "has the line '# /**/ import"),
                ("%:include <sys/epoll.h>", "has the line '%:include"),
                ("#\\\n include <sys/epoll.h>", "has the line '#\\'")):
            with self.subTest(line):
                self.file.write_text(f"{line}\n{text}", encoding="utf-8")
                self.assertIn(f"{self.file.name} {complaint}", self.complaint())

    def test_more_lines_than_people_can_check(self):
        lines = sum(len(file.read_text(encoding="utf-8").splitlines())
                    for file in (self.copy / "src").rglob("*.mm"))
        self.add("\n" * (500 - lines))
        self.assertEqual(self.complaint(), "")
        self.add("\n")
        self.assertIn("501 lines of Objective-C++", self.complaint())

    def test_a_file_that_the_build_does_not_name(self):
        (self.folder / "other.mm").write_text("")
        self.assertIn("other.mm is not named in its CMakeLists.txt", self.complaint())

    def test_a_function_that_is_gone_or_has_other_types(self):
        text = self.file.read_text(encoding="utf-8")
        line = "void revealFile(const std::filesystem::path& file) {"
        self.assertIn(line, text)
        for other in ("", line.replace("std::filesystem::path", "std::string")):
            with self.subTest(other):
                self.file.write_text(text.replace(line, other), encoding="utf-8")
                self.assertIn(f"do not have the line '{line}' exactly once", self.complaint())

    def test_each_file_with_its_functions_in_another_namespace(self):
        files = list((self.copy / "src").rglob("*.mm"))
        self.assertNotEqual(files, [])
        for file in files:
            with self.subTest(file.name):
                text = file.read_text(encoding="utf-8")
                other = re.sub("(?m)^(namespace |tallowcrest::.* )tallowcrest", r"\1tallow", text)
                self.assertNotEqual(other, text)
                file.write_text(other, encoding="utf-8")
                self.assertRegex(self.complaint(), "do not have the line '.*tallowcrest.*' exactly")
                file.write_text(text, encoding="utf-8")

    def test_a_function_in_two_files(self):
        self.add("namespace tallowcrest {\n}\n")
        self.assertIn("the line 'namespace tallowcrest {' exactly once", self.complaint())

    def test_no_file_at_all(self):
        for file in (self.copy / "src").rglob("*.mm"):
            file.unlink()
        self.assertIn("do not have the line", self.complaint())


if __name__ == "__main__":
    PROJECT = pathlib.Path(sys.argv.pop())
    unittest.main()
