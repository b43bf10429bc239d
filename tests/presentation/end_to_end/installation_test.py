#!/usr/bin/env python3
"""Installing the real program, its start at login and its first run.

    installation_test.py PROGRAM [unittest options]
"""

import os
import subprocess
import unittest

from private_desktop import eventually
from window_case import WindowTestCase, main, start_desktop

desktop = None


def setUpModule():
    global desktop
    desktop = start_desktop()


def tearDownModule():
    desktop.end()


def home(*parts):
    return os.path.join(desktop.env["HOME"], *parts)


class Installation(WindowTestCase):
    def press(self, window, name):
        from gi.repository import Atspi
        window.press(Atspi.Role.PUSH_BUTTON, name)

    def exec_of(self, entry):
        with open(entry, encoding="utf-8") as file:
            (line,) = [line for line in file if line.startswith("Exec=")]
        return line[len("Exec="):].strip().strip('"')

    def test_the_installed_program_starts_from_its_launcher_and_at_login(self):
        program, window, _ = self.start_window()
        window.go_to("Settings")
        self.press(window, "Install")
        window.label("Installed Tallowcrest to ~/.local/opt/tallowcrest.")
        target = home(".local", "opt", "tallowcrest")
        self.assertEqual(sorted(os.listdir(target)),
                         ["tallowcrest", "tallowcrest-desktop", "tallowcrest-http.so"])
        entry = os.path.join(self.data, "applications", "tallowcrest.desktop")
        self.assertEqual(self.exec_of(entry), os.path.join(target, "tallowcrest"))
        icon = os.path.join(self.data, "icons", "hicolor", "scalable", "apps", "tallowcrest.svg")
        with open(icon, encoding="utf-8") as file:
            self.assertIn("<svg", file.read())
        self.press(window, "Setup Wizard")
        self.press(window, "Launch at Login")
        window.label("Enabled launch at login.")
        autostart = home(".config", "autostart", "tallowcrest.desktop")
        self.assertEqual(self.exec_of(autostart), os.path.join(target, "tallowcrest"))
        program.end()

        launcher = home(".local", "bin", "tallowcrest")
        said = subprocess.run([launcher, "--version"], env=desktop.env, stdout=subprocess.PIPE,
                              text=True, timeout=60, check=True).stdout
        self.assertTrue(said.startswith("tallowcrest"), said)
        installed = desktop.start(launcher, "--ui-testing",
                                  env={**desktop.env, "XDG_DATA_HOME": self.data})
        self.addCleanup(installed.end)
        eventually(desktop.windows, "the installed program shows its window")
        self.assertEqual(os.readlink(f"/proc/{installed.pid}/exe"),
                         os.path.join(target, "tallowcrest-desktop"))

    def test_the_wizard_comes_until_it_is_done(self):
        def start():
            program = desktop.start(self.program,
                                    env={**desktop.env, "XDG_DATA_HOME": self.data})
            self.addCleanup(program.end)
            eventually(desktop.windows, "the window shows")
            return program

        def wizards():
            return desktop.windows("^Set Up Tallowcrest$")

        from accessible_window import AccessibleWindow
        program = start()
        eventually(wizards, "the wizard shows at the first start")
        program.end()
        program = start()
        eventually(wizards, "and again, because it was not done")
        self.press(AccessibleWindow(program.pid), "Done")
        eventually(lambda: not wizards(), "it closes")
        program.end()
        program = start()
        AccessibleWindow(program.pid).label(lambda said: said.startswith("Current session"))
        self.assertEqual(wizards(), [])


if __name__ == "__main__":
    main()
