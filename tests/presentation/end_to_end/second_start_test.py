#!/usr/bin/env python3
"""The window program when it is started again, and when it loses its tray or session bus.

    second_start_test.py PROGRAM [unittest options]
"""

import itertools
import os
import resource
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import unittest

from private_desktop import PrivateDesktop, eventually

PROGRAM = None
desktop = None


def setUpModule():
    global desktop
    desktop = PrivateDesktop()


def tearDownModule():
    desktop.end()


class StartTestCase(unittest.TestCase):
    def setUp(self):
        # An instance belongs to its directories, so each test has its own.
        self.home = tempfile.mkdtemp(dir=desktop.folder)
        self.runtime = os.path.join(self.home, "run")
        os.mkdir(self.runtime, 0o700)
        self.env = {**desktop.env, "XDG_DATA_HOME": os.path.join(self.home, "data"),
                    "XDG_RUNTIME_DIR": self.runtime}

    def start(self, *arguments, **env):
        program = desktop.start(PROGRAM, *(arguments or ("--ui-testing",)),
                                env={**self.env, **env})
        self.addCleanup(program.end)
        return program

    def windows_of(self, program):
        return desktop.output("xdotool", "search", "--all", "--onlyvisible", "--pid",
                              str(program.pid), "--name", "^Tallowcrest$").split()

    def start_window(self, **env):
        """The program and the number of its window, which has the focus."""
        program = self.start(**env)
        window = eventually(lambda: self.windows_of(program), "the window shows")[0]
        desktop.focus(window)
        self.assert_becomes_active(window)
        return program, window

    def start_tray(self, **env):
        host = desktop.start(
            sys.executable,
            os.path.join(os.path.dirname(os.path.abspath(__file__)), "desktop_services.py"),
            "tray", env={**self.env, **env})
        self.addCleanup(host.end)
        eventually(lambda: "org.kde.StatusNotifierWatcher" in subprocess.run(
            ["dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus",
             "/org/freedesktop/DBus", "org.freedesktop.DBus.ListNames"],
            env={**self.env, **env}, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
            text=True, check=False).stdout, "the tray is on the bus")
        return host

    def hide(self, program, window):
        """Closes the window of a program that stays in the tray."""
        desktop.focus(window)
        self.assert_becomes_active(window)

        def closes():
            # A key can get lost on a busy machine.
            desktop.focus(window)
            desktop.keys("alt+F4")
            try:
                eventually(lambda: not self.windows_of(program), "the window closes", 5)
            except AssertionError:
                return False
            return True

        eventually(closes, "the window closes by its key")
        self.assertTrue(program.is_running())

    def assert_becomes_active(self, window):
        eventually(lambda: desktop.output("xdotool", "getactivewindow").strip() == window,
                   "the window is the active one")

    def assert_hands_over(self, **env):
        second = self.start(**env)
        self.assertEqual(second.status(), 0, second.complaints())
        self.assertEqual(second.complaints(), "")

    def living(self):
        """The processes of the window program in this test's directories."""
        found = []
        for entry in os.listdir("/proc"):
            if not entry.isdigit():
                continue
            try:
                with open(f"/proc/{entry}/environ", "rb") as file:
                    is_ours = self.home.encode() in file.read()
                if is_ours and os.readlink(f"/proc/{entry}/exe").endswith("/tallowcrest-desktop"):
                    found.append(int(entry))
            except OSError:
                continue  # it ended, or is another user's
        return found


class SecondStart(StartTestCase):
    def test_it_brings_a_covered_window_to_the_front(self):
        first, window = self.start_window()
        other_data = os.path.join(self.home, "other")
        # With another data directory it is another instance.
        other, cover = self.start_window(XDG_DATA_HOME=other_data)
        self.assertNotEqual(window, cover)
        self.assert_hands_over()
        self.assert_becomes_active(window)
        self.assert_hands_over(XDG_DATA_HOME=other_data)
        self.assert_becomes_active(cover)
        self.assertEqual(sorted(self.living()), sorted([first.pid, other.pid]))

    def test_it_restores_a_minimised_window(self):
        first, window = self.start_window()
        desktop.output("xdotool", "windowminimize", "--sync", window)
        eventually(lambda: "Iconic" in desktop.output("xprop", "-id", window, "WM_STATE"),
                   "the window is minimised")
        self.assert_hands_over()
        self.assert_becomes_active(window)
        self.assertIn("Normal", desktop.output("xprop", "-id", window, "WM_STATE"))
        self.assertEqual(self.living(), [first.pid])

    def test_it_shows_a_window_that_was_closed_into_the_tray(self):
        self.start_tray()
        first, window = self.start_window()
        self.hide(first, window)
        self.assert_hands_over(DESKTOP_STARTUP_ID="start_TIME1")
        shown = eventually(lambda: self.windows_of(first), "the window shows again")
        self.assertEqual(len(shown), 1)
        self.assert_becomes_active(shown[0])
        self.assertEqual(self.living(), [first.pid])

    def test_it_needs_no_display_and_no_runtime_directory(self):
        env = {"XDG_RUNTIME_DIR": ""}
        first, window = self.start_window(**env)
        desktop.output("xdotool", "windowminimize", "--sync", window)
        self.assert_hands_over(**env, DISPLAY=":9876")
        self.assert_becomes_active(window)
        self.assertEqual(self.living(), [first.pid])

    def test_it_starts_after_the_first_was_killed(self):
        first, _ = self.start_window()
        os.kill(first.pid, signal.SIGKILL)
        self.assertEqual(first.status(), -signal.SIGKILL)
        second, _ = self.start_window()
        self.assertEqual(self.living(), [second.pid])

    def test_it_waits_for_a_program_that_is_ending(self):
        first, _ = self.start_window()
        desktop.keys("ctrl+q")
        # Not waited for here: the second start waits for the first to end.
        second = self.start()
        eventually(lambda: self.windows_of(second), "the second program opens its window")
        self.assertEqual(first.status(), 0)
        self.assertEqual(self.living(), [second.pid])

    def test_it_reports_a_hung_program_and_ends(self):
        first, window = self.start_window()
        os.kill(first.pid, signal.SIGSTOP)
        try:
            second = self.start()
            self.assertEqual(second.status(), 1)
        finally:
            os.kill(first.pid, signal.SIGCONT)
        lines = second.complaints().splitlines()
        self.assertEqual(len(lines), 1, lines)
        self.assertIn(f"(process {first.pid})", lines[0])
        self.assert_hands_over()
        self.assert_becomes_active(window)

    def test_invalid_and_silent_clients_are_disconnected(self):
        first, window = self.start_window()
        folder = os.path.join(self.runtime, "tallowcrest")
        path = os.path.join(folder, next(name for name in os.listdir(folder)
                                         if name.endswith(".socket")))
        callers = []
        for text in (b"", b"sho", b"nonsense\n", b"\xff" * 100_000) * 20:
            caller = socket.socket(socket.AF_UNIX)
            self.addCleanup(caller.close)
            # Connects without a timeout, because it blocks while too many clients are waiting.
            caller.connect(path)
            caller.settimeout(20)
            try:
                caller.sendall(text)
            except (BrokenPipeError, ConnectionResetError):
                pass
            callers.append(caller)
        self.assert_hands_over()
        self.assert_becomes_active(window)
        for caller in callers:
            try:
                self.assertEqual(caller.recv(1), b"")
            except ConnectionResetError:
                pass
        self.assertTrue(first.is_running())
        self.assertEqual(first.complaints(), "")

    def test_the_window_opens_where_no_guard_is_possible(self):
        blocked = os.path.join(self.home, "blocked")
        with open(blocked, "w", encoding="utf-8"):
            pass
        env = {"XDG_RUNTIME_DIR": blocked, "XDG_DATA_HOME": blocked}
        first, _ = self.start_window(**env)
        second, _ = self.start_window(**env)
        for program in (first, second):
            self.assertIn("a second start will not find this window: " + blocked,
                          program.complaints())

    def test_headless_uses_no_guard(self):
        self.start_window()
        beside = self.start("--headless", "--samples", "1")
        self.assertEqual(beside.status(), 0, beside.complaints())
        shutil.rmtree(os.path.join(self.runtime, "tallowcrest"))
        alone = self.start("--headless", "--samples", "1")
        self.assertEqual(alone.status(), 0, alone.complaints())
        self.assertFalse(os.path.exists(os.path.join(self.runtime, "tallowcrest")))


class LostTray(StartTestCase):
    def start_bus(self):
        path = os.path.join(self.home, "bus")
        bus = desktop.start("dbus-daemon", "--session", "--nofork", "--nopidfile",
                            "--address=unix:path=" + path, env=self.env)
        self.addCleanup(bus.end)
        eventually(lambda: os.path.exists(path), "the bus listens")
        return bus, {"DBUS_SESSION_BUS_ADDRESS": "unix:path=" + path}

    def assert_comes_back_for_good(self, program):
        window = eventually(lambda: self.windows_of(program), "the window shows again")[0]
        # Without a tray, closing the window ends the program.
        desktop.focus(window)
        self.assert_becomes_active(window)
        desktop.keys("alt+F4")
        self.assertEqual(program.status(), 0)

    def test_the_window_comes_back_when_the_session_bus_ends(self):
        bus, env = self.start_bus()
        self.start_tray(**env)
        program, window = self.start_window(**env)
        self.hide(program, window)
        bus.end()
        self.assert_comes_back_for_good(program)

    def test_the_window_comes_back_when_the_tray_leaves(self):
        _, env = self.start_bus()
        tray = self.start_tray(**env)
        program, window = self.start_window(**env)
        self.hide(program, window)
        tray.end()
        self.assert_comes_back_for_good(program)

    def test_a_second_start_reaches_it_without_a_bus_too(self):
        bus, env = self.start_bus()
        self.start_tray(**env)
        program, window = self.start_window(**env)
        desktop.output("xdotool", "windowminimize", "--sync", window)
        bus.end()
        self.assert_hands_over(**env)
        self.assert_becomes_active(window)
        self.assertEqual(self.living(), [program.pid])


@unittest.skipIf("ASAN_OPTIONS" in os.environ, "the sanitizers themselves need descriptors")
class FewDescriptors(StartTestCase):
    def test_a_window_without_free_descriptors_still_answers(self):
        first, window = self.start_window()
        # The lowest that it has not opened yet, so that there is none any more.
        opened = set(map(int, os.listdir(f"/proc/{first.pid}/fd")))
        limit = next(number for number in itertools.count() if number not in opened)
        resource.prlimit(first.pid, resource.RLIMIT_NOFILE, (limit, limit))
        desktop.output("xdotool", "windowminimize", "--sync", window)
        self.assert_hands_over()
        self.assert_becomes_active(window)

    def test_with_too_few_descriptors_it_reports_an_error(self):
        program = desktop.start("/bin/sh", "-c", 'ulimit -n 6 && exec "$0" --ui-testing', PROGRAM,
                                env=self.env)
        self.addCleanup(program.end)
        self.assertEqual(program.status(), 1, program.complaints())
        self.assertIn("tallowcrest: ", program.complaints())


if __name__ == "__main__":
    PROGRAM = os.path.abspath(sys.argv.pop(1))
    unittest.main(verbosity=2)
