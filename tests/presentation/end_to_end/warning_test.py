#!/usr/bin/env python3
"""The real program on a busy machine, with a real notification daemon.

    warning_test.py PROGRAM [unittest options]
"""

import os
import shutil
import unittest

from private_desktop import eventually
from window_case import WindowTestCase, main, start_desktop

desktop = None


def setUpModule():
    global desktop
    desktop = start_desktop()


def tearDownModule():
    desktop.end()


class Warning(WindowTestCase):
    def setUp(self):
        super().setUp()
        from notification_daemon import NotificationDaemon
        self.daemon = NotificationDaemon(desktop)
        self.addCleanup(self.daemon.end)
        self.daemon.start()

    def keep_busy(self):
        """Starts a process for each core that uses all the CPU time it can get."""
        self.name = f"tcbusy{os.getpid()}"
        path = os.path.join(desktop.folder, self.name)
        shutil.copy(os.path.realpath("/bin/bash"), path)
        for _ in range(os.cpu_count()):
            busy = desktop.start(path, "-c", "while :; do :; done")
            self.addCleanup(busy.end)

    def warned(self):
        return self.daemon.find("System load is high. Top process: ")

    def is_in_front(self, number):
        eventually(lambda: desktop.output("xdotool", "getactivewindow").strip() == number,
                   "the window is in front")

    def test_a_button_brings_the_window_to_the_front_on_its_route(self):
        self.keep_busy()
        program, window, number = self.start_window()
        warning = self.warned()
        desktop.output("xdotool", "windowminimize", "--sync", number)
        self.daemon.press(warning, "Scan Remotes")
        window.label("Tailscale fleet health, SSH setup, and remote actions")
        self.is_in_front(number)
        window.go_to("Overview")
        window.label(lambda text: text.startswith("High load detected. CPU "))
        self.assertTrue(program.is_running())

    def test_a_click_on_the_text_opens_the_overview(self):
        self.keep_busy()
        _, window, number = self.start_window()
        window.go_to("Chat")
        warning = self.warned()
        desktop.output("xdotool", "windowminimize", "--sync", number)
        self.daemon.click(warning)
        window.label("Health at a glance and the safest next step")
        self.is_in_front(number)

    def test_the_other_buttons_open_their_routes(self):
        self.keep_busy()
        for button, subtitle in (
                ("Review Cleanup", "Overall CPU, memory, disk, backup, and cleanup guidance"),
                ("AI Analyze", "Explainable AI recommendations and action review")):
            with self.subTest(button):
                program, window, number = self.start_window()
                warning = self.warned()
                desktop.output("xdotool", "windowminimize", "--sync", number)
                self.daemon.press(warning, button)
                window.label(subtitle)
                self.is_in_front(number)
                program.end()


if __name__ == "__main__":
    main()
