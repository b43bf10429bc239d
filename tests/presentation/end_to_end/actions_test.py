#!/usr/bin/env python3
"""The real program acts on real processes: only after a confirmation, and only on the process that
was reviewed.

    actions_test.py PROGRAM CLOSE_CLIENT [unittest options]
"""

import os
import shutil
import sys
import unittest

from private_desktop import eventually
from window_case import ProcessTestCase, main, start_desktop

CLOSE_CLIENT = None
desktop = None


def setUpModule():
    global desktop
    desktop = start_desktop()


def tearDownModule():
    desktop.end()


class ActionTestCase(ProcessTestCase):
    def setUp(self):
        super().setUp()
        self.running, self.window, self.number = self.start_window_without_rules()
        self.window.go_to("Processes")

    def review(self, text, expected):
        """Selects the only row that the filter leaves for review."""
        from gi.repository import Atspi
        rows = self.filtered(self.window, text, expected)
        self.assertEqual(len(rows), 1)
        self.window.press(Atspi.Role.PUSH_BUTTON, "Select Top Row")
        self.window.label(lambda said: said.startswith(f"Selected {expected}"))

    def dialogs(self):
        return desktop.windows("^Confirm Action$")

    def ask_to_quit(self):
        desktop.focus(self.number)
        desktop.keys("ctrl+Delete")
        dialog = eventually(self.dialogs, "the question shows")
        self.assertEqual(len(dialog), 1)
        return dialog[0]

    def choose_from_file_menu(self, title):
        """With the keyboard only."""
        from gi.repository import Atspi
        desktop.focus(self.number)
        desktop.keys("alt+f")
        item = self.window.find(Atspi.Role.MENU_ITEM, title)
        for _ in range(len(self.window.showing(Atspi.Role.MENU_ITEM))):
            if self.window.has_focus(item):
                break
            desktop.keys("Down")
        eventually(lambda: self.window.has_focus(item), f"{title} is chosen")
        desktop.keys("Return")

    def confirm(self, dialog, title, name):
        """With the keyboard only: Tab from Cancel to the other button, then Space."""
        from gi.repository import Atspi
        # Makes sure that only a process of the test is quit.
        self.window.label(f"Quit {name}?")
        desktop.focus(dialog)
        button = self.window.find(Atspi.Role.PUSH_BUTTON, title)
        cancel = self.window.find(Atspi.Role.PUSH_BUTTON, "Cancel")
        eventually(lambda: self.window.has_focus(cancel), "Cancel has the focus")
        eventually(lambda: self.window.is_enabled(button), f"{title} can be pressed by now")
        desktop.keys("Tab")
        eventually(lambda: self.window.has_focus(button), f"{title} has the focus")
        desktop.keys("space")
        eventually(lambda: not self.dialogs(), "the question is gone")

    def says(self, message):
        self.window.label(message)


class QuitProcess(ActionTestCase):
    def test_return_and_escape_leave_the_process_alone(self):
        name, probe = self.start_probe()
        self.review(name, name)
        for key in ("Return", "Escape"):
            desktop.focus(self.ask_to_quit())
            self.window.label(f"Quit {name}?")
            desktop.keys(key)
            eventually(lambda: not self.dialogs(), f"{key} closes the question")
            self.says(f"Canceled: Quit {name}?.")
            self.assertTrue(probe.is_running())

    def test_return_on_the_confirming_button_cancels(self):
        from gi.repository import Atspi
        name, probe = self.start_probe()
        self.review(name, name)
        desktop.focus(self.ask_to_quit())
        button = self.window.find(Atspi.Role.PUSH_BUTTON, "Quit Process")
        eventually(lambda: self.window.is_enabled(button), "the button can be pressed by now")
        desktop.keys("Tab")
        eventually(lambda: self.window.has_focus(button), "Quit Process has the focus")
        desktop.keys("Return")
        eventually(lambda: not self.dialogs(), "the question is gone")
        self.says(f"Canceled: Quit {name}?.")
        self.assertTrue(probe.is_running())

    def test_confirming_ends_only_the_reviewed_process(self):
        name, probe = self.start_probe()
        other_name, other = self.start_probe(f"tcother{os.getpid()}")
        self.review(name, name)
        dialog = self.ask_to_quit()
        self.window.label(lambda said: said.startswith(
            f"Tallowcrest will send TERM to PID {probe.pid}."))
        # The path tells executables of the same name apart.
        self.window.label(os.path.join(desktop.folder, name))
        self.confirm(dialog, "Quit Process", name)
        self.assertEqual(probe.status(), -15)
        self.says(f"Asked process {probe.pid} to quit.")
        self.assertTrue(other.is_running())

    def test_a_process_that_ignores_term_is_not_killed(self):
        name = f"tcstubborn{os.getpid()}"
        path = os.path.join(desktop.folder, name)
        shutil.copy(os.path.realpath("/bin/bash"), path)
        stubborn = desktop.start(path, "-c", "trap '' TERM; while :; do read -t 1 < /dev/zero; done")
        self.addCleanup(stubborn.end)
        self.review(str(stubborn.pid), name)
        self.confirm(self.ask_to_quit(), "Quit Process", name)
        self.says(f"Asked process {stubborn.pid} to quit.")
        # It is still listed in the next sample.
        self.window.refresh()
        self.filtered(self.window, str(stubborn.pid), name)
        self.assertTrue(stubborn.is_running())

    def test_a_process_that_has_ended_is_reported(self):
        name, probe = self.start_probe()
        self.review(name, name)
        dialog = self.ask_to_quit()
        probe.end()
        self.confirm(dialog, "Quit Process", name)
        self.says(f"Could not quit process {probe.pid}. It may be protected.")

    def test_tallowcrest_itself_is_refused_without_a_question(self):
        self.review(str(self.running.pid), "tallowcrest")
        desktop.keys("ctrl+Delete")
        self.window.label(lambda said: said.startswith("Refused to quit protected process "))
        self.assertEqual(self.dialogs(), [])

    def test_a_protected_process_is_refused_alone_and_as_a_group(self):
        name, probe = self.start_probe("sshd")
        self.review(str(probe.pid), name)
        desktop.keys("ctrl+Delete")
        self.says("Refused to quit protected process sshd.")
        self.choose_from_file_menu("Quit Selected App Group")
        self.says("No visible processes found for sshd.")
        self.assertEqual(self.dialogs(), [])
        self.assertTrue(probe.is_running())

    def test_without_a_target_it_says_what_to_do(self):
        desktop.focus(self.number)
        desktop.keys("ctrl+Delete")
        self.says("Select a process first.")
        self.assertEqual(self.dialogs(), [])

    def test_the_question_survives_samples(self):
        name, probe = self.start_probe()
        self.review(name, name)
        dialog = self.ask_to_quit()
        self.window.label(f"Quit {name}?")
        before = desktop.output("xdotool", "getwindowgeometry", dialog)
        taken = self.window.showing(name=lambda said: ", updated " in said)[0].get_name()
        eventually(lambda: self.window.showing(
            name=lambda said: ", updated " in said and said != taken), "a sample lands")
        self.assertEqual(self.dialogs(), [dialog])
        self.assertEqual(desktop.output("xdotool", "getwindowgeometry", dialog), before)
        self.confirm(dialog, "Quit Process", name)
        self.assertEqual(probe.status(), -15)


class PurgeCaches(ActionTestCase):
    def test_a_double_click_does_not_confirm(self):
        """The dialog opens below the pointer; its button can be where the first click was."""
        from gi.repository import Atspi
        self.window.go_to("Optimize")
        for delay in ("150", "250", "400"):
            button = self.window.find(Atspi.Role.PUSH_BUTTON, "Purge Caches")
            place = button.get_extents(Atspi.CoordType.SCREEN)
            desktop.output("xdotool", "mousemove", str(place.x + place.width // 2),
                           str(place.y + place.height // 2), "click", "--repeat", "2", "--delay",
                           delay, "1")
            desktop.focus(eventually(self.dialogs, "the question shows and stays")[0])
            desktop.keys("Escape")
            eventually(lambda: not self.dialogs(), "the question is gone")
            self.says("Canceled: Purge file caches?.")


class QuitGroup(ActionTestCase):
    def ask_to_quit_group(self):
        self.choose_from_file_menu("Quit Selected App Group")
        return eventually(self.dialogs, "the question shows")[0]

    def test_a_group_of_twenty_ends(self):
        name, probes = self.start_probe(f"tcgroup{os.getpid()}", count=20)
        self.review(str(probes[0].pid), name)
        dialog = self.ask_to_quit_group()
        self.window.label(f"Quit {name}?")
        self.confirm(dialog, "Quit App Group", name)
        self.assertEqual([probe.status() for probe in probes], [-15] * 20)
        self.says(f"Asked {name}'s visible processes to quit.")

    def test_an_application_with_a_window_is_asked_gracefully(self):
        name = f"tcwindow{os.getpid()}"
        path = os.path.join(desktop.folder, name)
        shutil.copy(CLOSE_CLIENT, path)
        client = desktop.start(path, "own", os.uname().nodename)
        self.addCleanup(client.end)
        self.review(str(client.pid), name)
        self.confirm(self.ask_to_quit_group(), "Quit App Group", name)
        self.assertEqual(client.status(), 0)
        self.says(f"Asked {name} to quit gracefully.")


if __name__ == "__main__":
    CLOSE_CLIENT = os.path.abspath(sys.argv.pop(2))
    main()
