#!/usr/bin/env python3
"""The diagnostics report of the real program: exported to a file, copied to the clipboard.

    report_test.py PROGRAM CLIPBOARD_MANAGER [unittest options]
"""

import os
import stat
import sys
import unittest

from private_desktop import eventually
from window_case import WindowTestCase, main, start_desktop

CLIPBOARD_MANAGER = None
desktop = None


def setUpModule():
    global desktop
    desktop = start_desktop()


def tearDownModule():
    desktop.end()


def assert_whole(case, report):
    case.assertTrue(report.startswith("Tallowcrest report - "), report[:80])
    for heading in ("App\tCPU\tMemory\tProcesses\tProtected", "PID\tCPU\tMemory\tProcess",
                    "No remote scan results.", "Recent Events"):
        case.assertIn(heading, report)


class Report(WindowTestCase):
    def test_it_is_exported_into_the_owners_documents(self):
        papers = os.path.join(desktop.env["HOME"], "Papers")
        with open(os.path.join(desktop.env["XDG_CONFIG_HOME"], "user-dirs.dirs"), "w",
                  encoding="utf-8") as file:
            file.write('XDG_DOCUMENTS_DIR="$HOME/Papers"\n')
        self.addCleanup(os.remove, file.name)
        _, window, _ = self.start_window()
        window.go_to("History")
        desktop.keys("ctrl+e")
        window.label(lambda said: said.startswith("Exported diagnostics to "))
        folder = os.path.join(papers, "Tallowcrest", "outputs", "reports")
        (name,) = os.listdir(folder)
        window.label(f"Exported diagnostics to {name}.")
        self.assertRegex(name, r"^Tallowcrest-Diagnostics-\d{4}-\d\d-\d\d-\d{6}\.txt$")
        path = os.path.join(folder, name)
        self.assertEqual(stat.S_IMODE(os.stat(path).st_mode), 0o600)
        with open(path, encoding="utf-8") as file:
            assert_whole(self, file.read())

    def test_a_copied_report_survives_the_program(self):
        kept = os.path.join(desktop.folder, "kept")
        manager = desktop.start(CLIPBOARD_MANAGER, kept)
        self.addCleanup(manager.end)
        eventually(lambda: "ready" in manager.complaints(), "somebody keeps the clipboard")
        program, window, number = self.start_window()
        desktop.keys("ctrl+shift+c")
        window.label("Copied a performance report to the clipboard.")
        desktop.focus(number)
        desktop.keys("ctrl+q")
        self.assertEqual(program.status(), 0)
        with open(kept, encoding="utf-8") as file:
            assert_whole(self, file.read())


if __name__ == "__main__":
    # After the program, which is the first argument of all these tests.
    CLIPBOARD_MANAGER = os.path.abspath(sys.argv.pop(2))
    main()
