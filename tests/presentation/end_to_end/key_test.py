#!/usr/bin/env python3
"""The key of the advisor's provider in the real window: typed or pasted, kept by a real keyring,
removed, and then nowhere in the memory of the program. And a keyring that is locked.

    key_test.py PROGRAM [unittest options]
"""

import os
import random
import re
import resource
import string
import subprocess
import sys
import unittest

from private_desktop import eventually
from window_case import WindowTestCase, main, start_desktop

SECRETS = os.path.join(os.path.dirname(__file__), "../../platform/secrets")
TELLING = 12  # characters of the key in a row
desktop = None


def setUpModule():
    global desktop
    # The programs inherit this; otherwise there would be no dump to forbid.
    _, hard = resource.getrlimit(resource.RLIMIT_CORE)
    resource.setrlimit(resource.RLIMIT_CORE, (hard, hard))
    desktop = start_desktop()


def tearDownModule():
    desktop.end()


def random_key():
    return "sk-" + "".join(random.SystemRandom().choices(string.ascii_lowercase + string.digits,
                                                         k=96))


def memory(pid):
    """The writable memory of a process, piece by piece, each with its line of the map."""
    with open(f"/proc/{pid}/maps", encoding="utf-8") as maps, \
            open(f"/proc/{pid}/mem", "rb", buffering=0) as bytes_:
        for line in maps:
            begin, end, rights = re.match(r"(\w+)-(\w+) (\S+)", line).groups()
            if not rights.startswith("rw"):
                continue
            begin, end = int(begin, 16), int(end, 16)
            try:
                yield line.strip(), os.pread(bytes_.fileno(), end - begin, begin)
            except OSError:
                continue  # a part that cannot be read, such as that of a device


def remains(key, pid):
    """Where parts of the key are, in each of the ways in which programs keep texts."""
    parts = [key[at:at + TELLING] for at in range(0, len(key) - TELLING + 1, TELLING)]
    found = []
    total = 0
    for place, piece in memory(pid):
        total += len(piece)
        for part in parts:
            for encoding in ("utf-8", "utf-16-le", "utf-32-le"):
                if part.encode(encoding) in piece:
                    found.append(f"{part} as {encoding} in {place}")
    assert total > 1_000_000, total
    return found


class KeyTestCase(WindowTestCase):
    def setUp(self):
        super().setUp()
        self.password = os.path.join(desktop.folder, "password")
        with open(self.password, "w", encoding="utf-8") as file:
            file.write("correct horse")
        self.keyring = None
        # In each test: the bus would start one for a program that asks, with the data of another.
        self.start_keyring(unlocked=True)

    def start_keyring(self, unlocked):
        """A real keyring, which makes its collection when it is first unlocked."""
        if self.keyring is not None:
            self.keyring.end()
            eventually(lambda: not self.has_keyring(), "the keyring has ended")
        source = f"--unlock <{self.password}" if unlocked else "</dev/null"
        self.keyring = desktop.start(
            "sh", "-c",
            "exec gnome-keyring-daemon --foreground --components=secrets " + source,
            env={**desktop.env, "XDG_DATA_HOME": self.data})
        self.addCleanup(self.keyring.end)
        eventually(self.has_keyring, "the keyring serves")

    @staticmethod
    def has_keyring():
        return "true" in desktop.output(
            "dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/",
            "org.freedesktop.DBus.NameHasOwner", "string:org.freedesktop.secrets")

    @staticmethod
    def has_key():
        """Whether the keyring has a key of the program."""
        return "/collection/" in desktop.output(
            "dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.secrets",
            "/org/freedesktop/secrets", "org.freedesktop.Secret.Service.SearchItems",
            "dict:string:string:service,local.quern.tallowcrest")

    def start_at_the_key(self, **env):
        """The program with the cursor in the field for the key."""
        from gi.repository import Atspi
        program, window, number = self.start_window(**env)
        desktop.keys("ctrl+comma")
        field = window.find(Atspi.Role.PASSWORD_TEXT, "OpenAI API key")
        field.get_component_iface().grab_focus()
        eventually(lambda: window.has_focus(field), "the field has the focus")
        return program, window, number

    def assert_saved_and_removed(self, program, window, key):
        from gi.repository import Atspi
        self.assertNotEqual(remains(key, program.pid), [], "the search finds a key that is there")
        desktop.keys("Return")
        eventually(self.has_key, "the key is stored")
        # The button can be pressed once the window knows.
        window.label("OpenAI key saved in Keychain")
        window.press(Atspi.Role.PUSH_BUTTON, "Remove Key")
        eventually(lambda: not self.has_key(), "the key is removed")
        window.label("No OpenAI key saved")
        self.assertEqual(remains(key, program.pid), [])


@unittest.skipIf("ASAN_OPTIONS" in os.environ, "the sanitizers keep memory that was released")
class Memory(KeyTestCase):
    def test_nothing_of_a_typed_key_remains(self):
        program, window, _ = self.start_at_the_key()
        key = random_key()
        desktop.type(key)
        eventually(lambda: key[-TELLING:] in str(remains(key[-TELLING:], program.pid)),
                   "the end of the key has arrived")
        self.assert_saved_and_removed(program, window, key)

    def test_nothing_of_a_pasted_key_remains(self):
        program, window, _ = self.start_at_the_key()
        key = random_key()
        clipboard = subprocess.Popen(["xclip", "-quiet", "-selection", "clipboard"],
                                     env=desktop.env, stdin=subprocess.PIPE,
                                     stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(clipboard.wait)
        self.addCleanup(clipboard.kill)
        clipboard.stdin.write((key + "\n").encode())
        clipboard.stdin.close()
        eventually(lambda: key in desktop.output("xclip", "-o", "-selection", "clipboard"),
                   "the key is on the clipboard")
        desktop.keys("ctrl+v")
        eventually(lambda: remains(key, program.pid), "the key has arrived")
        self.assert_saved_and_removed(program, window, key)

    def test_a_key_that_is_dropped_is_gone_and_was_in_no_dump(self):
        program, _, _ = self.start_at_the_key()
        limit, hard = resource.prlimit(program.pid, resource.RLIMIT_CORE)
        self.assertTrue(limit not in (0, 1) and hard not in (0, 1), "there are no dumps anyway")
        key = random_key()
        desktop.type(key)
        eventually(lambda: key[-TELLING:] in str(remains(key[-TELLING:], program.pid)),
                   "the end of the key has arrived")
        self.assertIn(resource.prlimit(program.pid, resource.RLIMIT_CORE)[0], (0, 1))
        desktop.keys("Escape")
        eventually(lambda: not remains(key, program.pid), "nothing of it remains")

    def test_a_key_of_the_environment_is_no_ones_business(self):
        key = random_key()
        program, _, _ = self.start_window(TALLOWCREST_AI_KEY=key)
        processes = [program.pid] + [int(each) for each in desktop.output(
            "pgrep", "-P", str(program.pid)).split()]
        for each in processes:
            with open(f"/proc/{each}/environ", "rb") as environment:
                self.assertNotIn(key.encode(), environment.read())
        self.assertEqual(remains(key, program.pid), [])


class AssistiveTechnology(KeyTestCase):
    def test_it_writes_a_key_and_reads_dots(self):
        from gi.repository import Atspi
        program, window, _ = self.start_at_the_key()
        field = window.find(Atspi.Role.PASSWORD_TEXT, "OpenAI API key")
        for key in ("sk-first", "sk-assisted"):
            field.set_text_contents(key)
            eventually(lambda: field.get_character_count() == len(key), "the key has arrived")
            self.assertEqual(field.get_text(0, len(key)), "\u2022" * len(key))
        desktop.keys("Return")
        eventually(self.has_key, "the key is stored")
        self.assertTrue(program.is_running())


class LockedKeyring(KeyTestCase):
    def test_the_window_tells_what_it_waits_for_and_stays_alive(self):
        from gi.repository import Atspi
        program, window, _ = self.start_at_the_key()
        desktop.type("sk-test")
        desktop.keys("Return")
        eventually(self.has_key, "the key is stored")
        desktop.keys("Escape")
        prompter = desktop.start("/usr/bin/python3", "-B",
                                 os.path.join(SECRETS, "scripted_prompter.py"), "ignore")
        self.addCleanup(prompter.end)
        self.start_keyring(unlocked=False)

        window.go_to("AI Advisor")
        window.press(Atspi.Role.PUSH_BUTTON, "Analyze Now")
        window.press(Atspi.Role.PUSH_BUTTON, "Analyze")
        # The window answers on its main thread, so it is not held up by the keyring.
        window.label(lambda said: said.startswith("Reading the key… ")
                     and "the password of its key store" in said)
        prompter.end()
        eventually(lambda: window.showing(
            None, lambda said: said.startswith("On-device analysis: ")),
            "the answer of this machine shows")
        self.assertTrue(program.is_running())


if __name__ == "__main__":
    main()
