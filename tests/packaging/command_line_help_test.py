"""Compares the manual page and the completions with the program's own --help.

    command_line_help_test.py PROGRAM FOLDER SOURCES [unittest arguments]

FOLDER has tallowcrest.1, tallowcrest.bash, tallowcrest.zsh and tallowcrest.fish; SOURCES has the
program's parser of options. The completions are asked in the shells themselves.
"""

import os
import pathlib
import pty
import re
import select
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM, FOLDER, SOURCES = (pathlib.Path(sys.argv.pop(1)).absolute() for _ in range(3))

HELP = subprocess.run([PROGRAM, "--help"], check=True, capture_output=True, text=True).stdout
# The options by their indentation and name, and the word for the value, if any.
ROWS = re.findall(r"^( +)(?:-\w, )?(--[\w-]+) ?([A-Z]*)", HELP, re.MULTILINE)
OPTIONS = {name for _, name, _ in ROWS}
ALONE = {name for indent, name, _ in ROWS if len(indent) == 2}
WITH_VALUE = {name for _, name, value in ROWS if value}
DEADLINE_SECONDS = 20


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True,
                          cwd=FOLDER).stdout


class Bash:
    SCRIPT = """
        source tallowcrest.bash
        [[ $(complete -p tallowcrest) == 'complete -F _tallowcrest tallowcrest' ]] || exit 1
        COMP_WORDS=(tallowcrest "$@")
        COMP_CWORD=$#
        _tallowcrest tallowcrest "${COMP_WORDS[-1]}" "${COMP_WORDS[-2]}"
        printf '%s\\n' "${COMPREPLY[@]}"
    """

    def proposals(self, *words):
        return set(output_of("bash", "--norc", "-c", self.SCRIPT, "bash", *words).split())


class Fish:
    def proposals(self, *words):
        line = " ".join(["tallowcrest", *words])
        script = f"source tallowcrest.fish; complete --do-complete '{line}'"
        rows = output_of("fish", "--no-config", "-c", script).splitlines()
        return {row.split("\t")[0] for row in rows}


class Zsh:
    """An interactive shell on a terminal, because only there zsh completes. What is proposed is
    taken from the calls of compadd, which would show it."""

    SETUP = r"""
        fpath=($HOME $fpath)
        autoload -Uz compinit
        compinit -u -D
        compadd() {
            if [[ ${@[1,(i)(-|--)]} != *-(O|A|D)\ * ]]; then
                local -a proposals
                builtin compadd -A proposals "$@"
                print -rl -- $proposals >>$HOME/proposals
            fi
            builtin compadd "$@"
        }
        complete_and_tell() { zle complete-word; print -n THE''-END }
        zle -N complete_and_tell
        bindkey '^I' complete_and_tell
        print READY''-NOW
    """

    def proposals(self, *words):
        with tempfile.TemporaryDirectory() as home:
            os.symlink(FOLDER / "tallowcrest.zsh", pathlib.Path(home) / "_tallowcrest")
            pathlib.Path(home, "setup").write_text(self.SETUP)
            pathlib.Path(home, "proposals").touch()
            pid, terminal = pty.fork()
            if pid == 0:
                os.chdir(FOLDER)
                os.execvpe("zsh", ["zsh", "-f", "-i"],
                           {"PATH": os.environ["PATH"], "HOME": home, "TERM": "dumb"})
            try:
                os.write(terminal, b". $HOME/setup\n")
                self._read_until(terminal, "READY-NOW")
                os.write(terminal, " ".join(["tallowcrest", *words]).encode() + b"\t")
                self._read_until(terminal, "THE-END")
                return set(pathlib.Path(home, "proposals").read_text().split())
            finally:
                os.close(terminal)
                os.waitpid(pid, 0)

    def _read_until(self, terminal, mark):
        text = ""
        end = time.monotonic() + DEADLINE_SECONDS
        while mark not in text:
            ready, _, _ = select.select([terminal], [], [], max(0, end - time.monotonic()))
            if not ready:
                raise TimeoutError(f"zsh has not said {mark}, but: {text}")
            text += os.read(terminal, 65536).decode(errors="replace")


class Completion:
    """What holds for each shell."""

    def test_proposes_each_option_of_the_program_without_a_window(self):
        self.assertEqual(self.options("--headless", "--"), OPTIONS)

    def test_proposes_the_others_only_after_the_option_that_they_need(self):
        self.assertEqual(self.options("--"), ALONE)

    def test_completes_the_beginning_of_an_option(self):
        self.assertEqual(self.options("--headless", "--sam"), {"--samples"})

    def test_proposes_files_for_a_path_only(self):
        beginning = "tallowcrest.ba"
        self.assertIn("tallowcrest.bash",
                      self.shell.proposals("--headless", "--openmetrics", beginning))
        self.assertNotIn("tallowcrest.bash",
                         self.shell.proposals("--headless", "--samples", beginning))

    def options(self, *words):
        # A shell may leave out what is on the line already, and one choice is shown in its line.
        proposals = {word for word in self.shell.proposals(*words) if word.startswith("--")}
        return (proposals - {"--"}) | ({"--headless"} if len(words) > 1 and words[-1] == "--"
                                       else set())


class BashCompletion(Completion, unittest.TestCase):
    shell = Bash()


class ZshCompletion(Completion, unittest.TestCase):
    shell = Zsh()


class FishCompletion(Completion, unittest.TestCase):
    shell = Fish()


class Help(unittest.TestCase):
    def test_names_the_options_that_the_parser_knows(self):
        parser = "".join(file.read_text() for file in (SOURCES / "app").glob("options*.cpp"))
        self.assertEqual(OPTIONS, set(re.findall(r'"(--[a-z][\w-]*)"', parser)))

    def test_is_in_the_manual_page_as_a_whole(self):
        manual = (FOLDER / "tallowcrest.1").read_text().replace("\\-", "-")
        listed = re.findall(r"^\.TP\n(?:\\fB-\w\\fR, )?\\fB(--[\w-]+)\\fR(?: \\fI([A-Z]+)\\fR)?",
                            manual, re.MULTILINE)
        self.assertEqual(sorted(listed), sorted((name, value) for _, name, value in ROWS))
        words = set(re.findall(r"\w+", HELP)) - {"Usage"}
        self.assertLessEqual(words, set(re.findall(r"\w+", re.sub(r"\\f[BIR]", "", manual))))


if __name__ == "__main__":
    unittest.main()
