"""Gives from_help the --help of an invented program.

    from_help_test.py FROM_HELP [unittest arguments]
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

FROM_HELP = pathlib.Path(sys.argv.pop(1)).absolute()
TEMPLATE = ".TH X 1\n@version@|@introduction@|@usage@\n@options@\n"
HELP = """One line -
and another.

Usage: tallowcrest [options]

  --first             it's [a]: "path" \\ of two
                      lines
    --below WORD      needs the first
  -l, --last          .begins with a dot
"""


class FromHelp(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        (self.folder / "template").write_text(TEMPLATE)

    def run_with(self, text, *arguments):
        (self.folder / "--help").write_text(text)
        (self.folder / "--version").write_text("invented 1-2\n")
        program = self.folder / "program"
        program.write_text('#!/bin/sh\nexec cat -- "${0%/*}/$1"\n')
        os.chmod(program, 0o755)
        return subprocess.run([sys.executable, FROM_HELP, program, *arguments],
                              capture_output=True, text=True, check=False)

    def manual(self):
        result = self.run_with(HELP, "man", str(self.folder / "template"))
        self.assertEqual(result.returncode, 0, result.stderr)
        return result.stdout

    def test_joins_the_lines_of_a_text(self):
        self.assertIn('it\'s [a]: "path" \\e of two lines\n', self.manual())

    def test_puts_introduction_usage_and_version_into_the_manual_page(self):
        self.assertIn("invented 1\\-2|One line \\- and another.|[options]\n", self.manual())

    def test_does_not_let_a_text_become_a_request_of_the_formatter(self):
        self.assertIn("\n\\&.begins with a dot", self.manual())

    def test_sets_options_that_need_another_one_below_it(self):
        below = self.manual().split(".RS\n")[1].split(".RE\n")[0]
        self.assertEqual(below, ".TP\n\\fB\\-\\-below\\fR \\fIWORD\\fR\nneeds the first\n")

    def test_quotes_texts_for_the_shells(self):
        for shell, arguments in (("bash", ["-n"]), ("zsh", ["-n"]), ("fish", ["--no-execute"])):
            with self.subTest(shell):
                result = self.run_with(HELP, shell)
                self.assertEqual(result.returncode, 0, result.stderr)
                subprocess.run([shell, *arguments], input=result.stdout, text=True, check=True)
        self.assertIn("it'\\''s \\[a\\]\\: \"path\" \\\\ of", self.run_with(HELP, "zsh").stdout)
        self.assertIn("it\\'s [a]: \"path\" \\\\ of", self.run_with(HELP, "fish").stdout)

    def test_refuses_a_line_that_it_does_not_understand(self):
        for line in ("  -x", "  --Wörter        text", "    text before its column",
                     "  --name value       text"):
            with self.subTest(line):
                result = self.run_with(HELP + line + "\n", "bash")
                self.assertNotEqual(result.returncode, 0)
                self.assertIn(f"not understood: {line}", result.stderr)
                self.assertEqual(result.stdout, "")

    def test_refuses_a_help_without_options(self):
        result = self.run_with("Text\n\nUsage: x\n", "bash")
        self.assertIn("names no options", result.stderr)
        self.assertNotEqual(result.returncode, 0)


if __name__ == "__main__":
    unittest.main()
