#!/usr/bin/env python3
"""A secret service that behaves as its argument says, for the tests of the secret store.

    scripted_secret_service.py MODE

It has one locked item, whose secret is "sk-scripted", and knows only unencrypted sessions. Prints
"ready", then the name of each method that it takes.

    willing            opens the lock when asked, and then has its item removed
    silent             never answers a search
    dies               ends in a search, and when it is given a secret
    dies-in-prompt     ends while it asks the owner
    dies-in-delete     has its item unlocked, and ends when it is to delete it
    silent-in-prompt   asks the owner, and hears nothing more, not even that it should stop asking
"""

import os
import sys

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

ROOT = "/org/freedesktop/secrets"
ITEM = ROOT + "/collection/one/1"
PROMPT = ROOT + "/prompt/1"
SESSION = ROOT + "/session/1"
DEFAULT = ROOT + "/aliases/default"
SECRET = "org.freedesktop.Secret."
MODE = sys.argv[1]
IS_LOCKED = MODE != "dies-in-delete"


def say(line):
    print(line, flush=True)


class NotSupported(dbus.DBusException):
    _dbus_error_name = "org.freedesktop.DBus.Error.NotSupported"


class Object(dbus.service.Object):
    properties = dbus.Dictionary(signature="sv")

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="s", out_signature="a{sv}")
    def GetAll(self, _interface):
        return self.properties


class Service(Object):
    items = [dbus.ObjectPath(ITEM)]
    is_locked = IS_LOCKED

    @dbus.service.method(SECRET + "Service", in_signature="sv", out_signature="vo")
    def OpenSession(self, algorithm, _input):
        if algorithm != "plain":
            raise NotSupported()
        return "", dbus.ObjectPath(SESSION)

    @dbus.service.method(SECRET + "Service", in_signature="a{ss}", out_signature="aoao",
                         async_callbacks=("answer", "fail"))
    def SearchItems(self, _attributes, answer, fail):
        say("SearchItems")
        if MODE == "dies":
            os._exit(1)
        if not self.is_locked:
            answer(self.items, [])
        elif MODE != "silent":
            answer([], self.items)

    @dbus.service.method(SECRET + "Service", in_signature="ao", out_signature="aoo")
    def Unlock(self, _objects):
        prompt.result = dbus.Array(self.items, signature="o")
        return [], dbus.ObjectPath(PROMPT)


class Collection(Object):
    @dbus.service.method(SECRET + "Collection", in_signature="a{sv}(oayays)b", out_signature="oo")
    def CreateItem(self, _properties, _secret, _replace):
        say("CreateItem")
        if MODE == "dies":
            os._exit(1)
        prompt.result = dbus.ObjectPath(ITEM)
        return dbus.ObjectPath("/"), dbus.ObjectPath(PROMPT)


class Item(Object):
    properties = dbus.Dictionary({
        "Locked": dbus.Boolean(IS_LOCKED), "Label": "Scripted",
        "Attributes": dbus.Dictionary(signature="ss"),
        "Created": dbus.UInt64(1), "Modified": dbus.UInt64(1)}, signature="sv")

    @dbus.service.method(SECRET + "Item", in_signature="", out_signature="o")
    def Delete(self):
        say("Delete")
        if MODE == "dies-in-delete":
            os._exit(1)
        service.items = []
        return dbus.ObjectPath("/")

    @dbus.service.method(SECRET + "Item", in_signature="o", out_signature="(oayays)")
    def GetSecret(self, session):
        return dbus.Struct((session, dbus.ByteArray(b""), dbus.ByteArray(b"sk-scripted"),
                            "text/plain"), signature="oayays")


class Prompt(Object):
    result = ""

    @dbus.service.method(SECRET + "Prompt", in_signature="s")
    def Prompt(self, _window):
        say("Prompt")
        if MODE == "dies-in-prompt":
            os._exit(1)
        if MODE == "willing":
            service.is_locked = False
            self.Completed(False, self.result)

    @dbus.service.method(SECRET + "Prompt")
    def Dismiss(self):
        say("Dismiss")
        if MODE != "silent-in-prompt":
            self.Completed(True, "")

    @dbus.service.signal(SECRET + "Prompt", signature="bv")
    def Completed(self, dismissed, result):
        pass


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
bus = dbus.SessionBus()
service = Service(bus, ROOT)
prompt = Prompt(bus, PROMPT)
others = [Collection(bus, DEFAULT), Item(bus, ITEM)]
name = dbus.service.BusName("org.freedesktop.secrets", bus)
say("ready")
GLib.MainLoop().run()
