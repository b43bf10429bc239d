#!/usr/bin/env python3
"""The dialog in which a keyring asks for its password, for the tests of the secret store.

    scripted_prompter.py dismiss|ignore

Prints "ready", then "asked" whenever the keyring asks.
"""

import sys

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

INTERFACE = "org.gnome.keyring.internal.Prompter"
CALLBACK = INTERFACE + ".Callback"


def say(line):
    print(line, flush=True)


class Prompter(dbus.service.Object):
    def __init__(self, bus, dismisses):
        super().__init__(bus, "/org/gnome/keyring/Prompter")
        self.bus = bus
        self.dismisses = dismisses

    def reply(self, client, path, answer):
        """Answers a method that has returned by then: the keyring takes no answer before that."""
        def send():
            self.bus.call_async(client, path, CALLBACK, "PromptReady", "sa{sv}s",
                                (answer, dbus.Dictionary(signature="sv"), ""), None, None)
        GLib.idle_add(send)

    @dbus.service.method(INTERFACE, in_signature="o", sender_keyword="client")
    def BeginPrompting(self, callback, client):
        self.reply(client, callback, "")

    @dbus.service.method(INTERFACE, in_signature="osa{sv}s", sender_keyword="client")
    def PerformPrompt(self, callback, _kind, _properties, _exchange, client):
        say("asked")
        if self.dismisses:
            self.reply(client, callback, "no")

    @dbus.service.method(INTERFACE, in_signature="o")
    def StopPrompting(self, _callback):
        pass


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
session = dbus.SessionBus()
prompter = Prompter(session, sys.argv[1] == "dismiss")
name = dbus.service.BusName("org.gnome.keyring.SystemPrompter", session)
say("ready")
GLib.MainLoop().run()
