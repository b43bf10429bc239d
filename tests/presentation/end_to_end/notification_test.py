#!/usr/bin/env python3
"""Load warnings as notifications of real daemons.

    notification_test.py POSTER [unittest options]

POSTER posts them through the program's own code, without its window.
"""

import os
import subprocess
import sys
import unittest

from private_desktop import PrivateDesktop, eventually

POSTER = None
desktop = None


def setUpModule():
    global desktop
    desktop = PrivateDesktop()
    # The accessibility library reads the address of its bus from the environment, once.
    os.environ.clear()
    os.environ.update(desktop.env)


def tearDownModule():
    desktop.end()


def warning(name):
    return (f"System load is high. Top process: {name}. Open Tallowcrest to review optimization "
            "options.")


class Poster:
    """The program that posts notifications, controlled by lines on its standard input."""

    count = 0

    def __init__(self):
        Poster.count += 1
        self.out = os.path.join(desktop.folder, f"poster-{Poster.count}")
        with open(self.out, "wb") as out, open(self.out + "-complaints", "wb") as complaints:
            self.process = subprocess.Popen([POSTER], env=desktop.env, stdin=subprocess.PIPE,
                                            stdout=out, stderr=complaints, text=True)
        eventually(lambda: self.lines()[:1] == ["ready"], "the poster runs")

    def tell(self, line):
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()

    def lines(self):
        with open(self.out, encoding="utf-8") as file:
            return file.read().splitlines()

    def answers(self):
        return self.lines()[1:]

    def complaints(self):
        with open(self.out + "-complaints", encoding="utf-8", errors="replace") as file:
            return file.read()

    def quit(self):
        self.tell("quit")
        return self.process.wait(30)

    def end(self):
        self.process.kill()
        self.process.wait()
        self.process.stdin.close()


class NotificationTestCase(unittest.TestCase):
    def setUp(self):
        self.daemon = self.new_daemon()
        self.addCleanup(self.daemon.end)
        self.poster = Poster()
        self.addCleanup(self.poster.end)

    def new_daemon(self):
        from notification_daemon import NotificationDaemon
        return NotificationDaemon(desktop)

    def warn(self, name):
        """Posts a warning about this name and returns its notification."""
        self.poster.tell("warn " + name)
        return self.daemon.find(name)

    def assert_answers(self, *lines):
        eventually(lambda: len(self.poster.answers()) >= len(lines), f"it answers {lines}")
        self.assertEqual(self.poster.answers(), list(lines))

    def assert_ends_silently(self):
        self.assertEqual(self.poster.quit(), 0)
        self.assertEqual(self.poster.complaints(), "")


class Shown(NotificationTestCase):
    def setUp(self):
        super().setUp()
        self.daemon.start()

    def test_markup_in_a_name_is_shown_literally(self):
        shown = self.warn("<b>x</b> & co")
        self.assertEqual(shown.title, "Tallowcrest warning")
        self.assertEqual(shown.body, warning("<b>x</b> & co"))
        self.assertEqual(list(shown.buttons), ["Review Cleanup", "AI Analyze", "Scan Remotes"])
        self.assert_ends_silently()

    def test_hostile_names_are_shown_as_text_of_limited_length(self):
        for name in ("<a href='http://example.invalid/'>free memory</a>", "</b></markup>",
                     "&lt;b&gt;&#x202e;&nosuch;", '" onclick="', "it's", "%s%n", "\\n"):
            shown = self.warn(name)
            self.assertEqual(shown.body, warning(name))
            self.daemon.dismiss(shown)
        self.poster.tell("warn " + "<" * 10_000)
        long = self.daemon.find("<" * 100)
        self.assertTrue(long.body.startswith("System load is high. Top process: <<<<"))
        self.assertTrue(long.body.endswith("<…"), long.body)
        self.assertLess(len(long.body), 1000)
        self.assertEqual(list(long.buttons), ["Review Cleanup", "AI Analyze", "Scan Remotes"])
        self.assert_ends_silently()

    def test_each_button_opens_its_route(self):
        for title, answers in (
                ("Review Cleanup", ["pressed OPEN_OPTIMIZE", "route optimizationSuggestions"]),
                ("AI Analyze", ["pressed OPEN_AI", "route aiAdvisor"]),
                ("Scan Remotes", ["pressed SCAN_REMOTES", "route remoteMacs"])):
            with self.subTest(title):
                before = self.poster.answers()
                self.daemon.press(self.warn("probe of " + title), title)
                self.assert_answers(*before, *answers)

    def test_a_click_on_the_text_opens_the_overview(self):
        self.daemon.click(self.warn("clicked"))
        self.assert_answers("pressed default", "route overview")

    def test_without_buttons_a_click_opens_the_overview(self):
        self.poster.tell("without buttons")
        shown = self.warn("plain")
        self.assertEqual(shown.body, warning("plain"))
        self.assertEqual(list(shown.buttons), [])
        self.daemon.click(shown)
        self.assert_answers("pressed default", "route overview")
        self.poster.tell("with buttons")
        self.assertEqual(list(self.warn("rich").buttons),
                         ["Review Cleanup", "AI Analyze", "Scan Remotes"])

    def test_a_dismissed_notification_opens_nothing(self):
        self.daemon.dismiss(self.warn("dismissed"))
        eventually(lambda: not self.daemon.shown(), "it is gone")
        self.daemon.press(self.warn("pressed"), "AI Analyze")
        self.assert_answers("pressed OPEN_AI", "route aiAdvisor")


class Restart(NotificationTestCase):
    def assert_works(self, name):
        self.daemon.press(self.warn(name), "Scan Remotes")
        self.assert_answers("pressed SCAN_REMOTES", "route remoteMacs")

    def test_the_bus_starts_the_daemon_for_a_warning(self):
        self.daemon.let_the_bus_start_it()
        self.assertFalse(self.daemon.runs())
        self.assert_works("called up")
        self.assert_ends_silently()

    def test_the_bus_starts_the_daemon_again_after_a_crash(self):
        self.daemon.let_the_bus_start_it()
        self.warn("before")
        before = self.daemon.pid()
        self.daemon.kill()
        self.assert_works("after")
        self.assertNotEqual(self.daemon.pid(), before)
        self.assert_ends_silently()

    def test_a_daemon_that_is_started_again_by_hand_is_found(self):
        self.daemon.start()
        self.warn("before")
        self.daemon.kill()
        self.daemon.start()
        self.assertEqual(self.daemon.shown(), [])
        self.assert_works("after")
        self.assert_ends_silently()

    def test_without_a_daemon_warnings_are_lost_silently(self):
        self.poster.tell("warn lost")
        # Answered after the warning has been posted.
        self.poster.tell("ping")
        self.assert_answers("what is: ping")
        self.daemon.start()
        self.poster.tell("warn found")
        self.assertEqual(self.daemon.find("found").body, warning("found"))
        self.assertEqual([each.body for each in self.daemon.shown()], [warning("found")])
        self.assert_ends_silently()


class WithoutButtons(NotificationTestCase):
    """With a daemon that cannot show the requested buttons."""

    def setUp(self):
        from notification_daemon import NotificationMonitor
        super().setUp()
        self.monitor = NotificationMonitor(desktop)
        self.addCleanup(self.monitor.end)
        self.daemon.start()

    def new_daemon(self):
        from notification_daemon import DaemonWithoutButtons
        return DaemonWithoutButtons(desktop)

    def assert_shows(self, name):
        eventually(lambda: self.daemon.text() == ("Tallowcrest warning", warning(name)),
                   f"the warning of {name} can be read")
        eventually(self.daemon.shines, "it is on the screen")

    def test_it_is_sent_no_buttons_and_shows_the_text_literally(self):
        self.assertNotIn("actions", self.daemon.capabilities())
        self.assertIn("body-markup", self.daemon.capabilities())
        self.assertFalse(self.daemon.shines())
        self.poster.tell("warn <b>x</b> & co")
        call, = self.monitor.answered(1)
        self.assertEqual(call.title, "Tallowcrest warning")
        self.assertEqual(call.body, warning("&lt;b&gt;x&lt;/b&gt; &amp; co"))
        self.assertEqual(call.actions, [])
        self.assertEqual(call.hints["category"], "x-tallowcrest.warning")
        self.assertEqual(call.answer.get_signature(), "u")
        self.assertGreater(call.answer.get_args_list()[0], 0)
        self.assert_shows("<b>x</b> & co")
        self.assertEqual(self.poster.answers(), [])
        self.assert_ends_silently()

    def test_each_daemon_is_sent_what_it_supports(self):
        self.poster.tell("warn first")
        self.assert_shows("first")
        self.daemon.kill()

        with_buttons = super().new_daemon()
        self.addCleanup(with_buttons.end)
        with_buttons.start()
        self.assertIn("actions", with_buttons.capabilities())
        self.poster.tell("warn second")
        with_buttons.press(with_buttons.find("second"), "AI Analyze")
        self.assert_answers("pressed OPEN_AI", "route aiAdvisor")
        with_buttons.kill()

        self.daemon.start()
        self.poster.tell("warn third")
        self.assert_shows("third")
        calls = self.monitor.answered(3)
        self.assertEqual([call.body for call in calls],
                         [warning(name) for name in ("first", "second", "third")])
        self.assertEqual([call.actions[::2] for call in calls],
                         [[], ["default", "OPEN_OPTIMIZE", "OPEN_AI", "SCAN_REMOTES"], []])
        self.assert_answers("pressed OPEN_AI", "route aiAdvisor")
        self.assert_ends_silently()


if __name__ == "__main__":
    POSTER = os.path.abspath(sys.argv.pop(1))
    unittest.main(verbosity=2)
