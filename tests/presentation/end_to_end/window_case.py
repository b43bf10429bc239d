"""Shared by the tests of the real window: the program on a private desktop."""

import os
import shutil
import sys
import tempfile
import unittest

from private_desktop import PrivateDesktop, eventually


def start_desktop():
    WindowTestCase.desktop = PrivateDesktop()
    # The accessibility library reads the address of its bus from the environment, once.
    os.environ.clear()
    os.environ.update(WindowTestCase.desktop.env)
    return WindowTestCase.desktop


def main():
    """The first argument is the program under test; the others are those of unittest."""
    WindowTestCase.program = os.path.abspath(sys.argv.pop(1))
    unittest.main(module="__main__", verbosity=2)


class WindowTestCase(unittest.TestCase):
    program = None
    desktop = None

    def setUp(self):
        # Settings are stored, so each test has a data directory of its own.
        self.data = tempfile.mkdtemp(dir=self.desktop.folder)

    def start(self, **env):
        program = self.desktop.start(self.program, "--ui-testing",
                                     env={**self.desktop.env, "XDG_DATA_HOME": self.data, **env})
        self.addCleanup(program.end)
        return program

    def start_window(self, **env):
        """The program, its window as assistive technology sees it, and the window's X11 number."""
        from accessible_window import AccessibleWindow
        program = self.start(**env)
        window = eventually(self.desktop.windows, "a window named Tallowcrest shows")
        self.assertEqual(len(window), 1)
        self.desktop.focus(window[0])
        return program, AccessibleWindow(program.pid), window[0]

    def start_unfocused(self):
        program = self.start()
        eventually(self.desktop.windows, "a window named Tallowcrest shows")
        return program

    def assert_hint(self, program):
        status = program.status()
        complaints = program.complaints()
        self.assertEqual(status, 1, complaints)
        self.assertIn("tallowcrest --headless", complaints)
        return complaints.strip().splitlines()


class ProcessTestCase(WindowTestCase):
    """Can start processes for the program to list."""

    def start_probe(self, name=None, count=1):
        """A process with a unique name; several of them for a `count` above 1."""
        name = name or f"tcprobe{os.getpid()}"
        path = os.path.join(self.desktop.folder, name)
        if not os.path.exists(path):
            shutil.copy("/bin/sleep", path)
        probes = [self.desktop.start(path, "600") for _ in range(count)]
        for probe in probes:
            self.addCleanup(probe.end)
        return (name, probes[0]) if count == 1 else (name, probes)

    def start_window_without_rules(self):
        """On a busy machine a rule would move the review to another process than the test's own."""
        from gi.repository import Atspi
        program, window, number = self.start_window()
        self.desktop.keys("ctrl+period")
        window.label("Emergency stop engaged. Automatic actions are disabled.")

        def clears(name):
            return name.startswith("Clear ")

        if window.showing(Atspi.Role.PUSH_BUTTON, clears):
            window.press(Atspi.Role.PUSH_BUTTON, clears)
            window.label("Cleared selected operation target.")
        return program, window, number

    def filtered(self, window, text, expected):
        window.type_into("Filter processes", text)
        return eventually(
            lambda: [row for row in window.cells() if row[0].startswith(expected)],
            f"the filter {text!r} leaves {expected}")
