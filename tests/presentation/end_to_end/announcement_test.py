#!/usr/bin/env python3
"""What a screen reader is told of what the owner has just asked for.

    announcement_test.py PROGRAM [unittest options]
"""

import unittest

from private_desktop import eventually
from window_case import WindowTestCase, main, start_desktop

desktop = None


def setUpModule():
    global desktop
    desktop = start_desktop()


def tearDownModule():
    desktop.end()


class Heard:
    """The notifications, by the names that they have once the event has come over the bus."""

    def __init__(self, test):
        from gi.repository import Atspi, GLib
        self.names = []
        self._context = GLib.MainContext.default()

        def appeared(event):
            if event.source.get_role() == Atspi.Role.NOTIFICATION:
                event.source.clear_cache()
                self.names.append(event.source.get_name())

        self._listener = Atspi.EventListener.new(appeared)
        self._listener.register("object:state-changed:showing")
        test.addCleanup(self._listener.deregister, "object:state-changed:showing")

    def has(self, name):
        while self._context.iteration(False):
            pass
        return name in self.names


class Announcements(WindowTestCase):
    def test_an_answer_and_its_status_line_are_both_told(self):
        from gi.repository import Atspi
        _, window, _ = self.start_window()
        window.go_to("Chat")
        heard = Heard(self)
        window.press(Atspi.Role.PUSH_BUTTON, lambda name: name.startswith("Ask: "))
        status = "Answered with on-device guidance."
        eventually(lambda: heard.has(status), f"{status!r} is told")
        names = heard.names
        self.assertEqual(names.count(status), 1, names)
        self.assertTrue(any(name.startswith("You: ") for name in names), names)
        self.assertTrue(any(name.startswith("Tallowcrest: ") for name in names), names)

    def test_all_that_would_be_sent_can_be_read(self):
        from gi.repository import Atspi
        _, window, _ = self.start_window()
        window.go_to("AI Advisor")
        window.press(Atspi.Role.PUSH_BUTTON, "Show Payload")
        payload = window.find(Atspi.Role.LABEL, "Payload").get_text_iface()
        text = Atspi.Text.get_text(payload, 0, -1)
        self.assertIn("CPU", text)
        utf16_units = len(text.encode("utf-16-le")) // 2
        self.assertEqual(utf16_units, Atspi.Text.get_character_count(payload))


if __name__ == "__main__":
    main()
