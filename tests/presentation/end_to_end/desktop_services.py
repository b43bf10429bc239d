#!/usr/bin/env python3
"""Stand-ins for services of a desktop, on the session bus of the environment.

    desktop_services.py tray        a status notifier watcher with a host
    desktop_services.py portal      the appearance preference of a desktop portal

Each runs until it is ended.
"""

import sys

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

PROPERTIES = "org.freedesktop.DBus.Properties"
WATCHER = "org.kde.StatusNotifierWatcher"
SETTINGS = "org.freedesktop.portal.Settings"
# Not part of any desktop: the test's own way to change the preference.
CONTROL = "org.tallowcrest.test.Appearance"


class Watcher(dbus.service.Object):
    def __init__(self, bus):
        self.items = []
        super().__init__(dbus.service.BusName(WATCHER, bus), "/StatusNotifierWatcher")

    @dbus.service.method(WATCHER, in_signature="s", sender_keyword="sender")
    def RegisterStatusNotifierItem(self, service, sender=None):
        # An item gives its bus name, or the path of an object at the sender.
        item = sender + service if service.startswith("/") else service + "/StatusNotifierItem"
        self.items.append(item)
        self.StatusNotifierItemRegistered(item)

    @dbus.service.method(WATCHER, in_signature="s")
    def RegisterStatusNotifierHost(self, service):
        pass

    @dbus.service.signal(WATCHER, signature="s")
    def StatusNotifierItemRegistered(self, item):
        pass

    def _properties(self):
        return {
            "RegisteredStatusNotifierItems": dbus.Array(self.items, signature="s"),
            "IsStatusNotifierHostRegistered": True,
            "ProtocolVersion": dbus.Int32(0),
        }

    @dbus.service.method("org.freedesktop.DBus.Introspectable", out_signature="s")
    def Introspect(self):
        # The base class describes only methods and signals; Qt reads only described properties.
        return f"""<node>
  <interface name="{WATCHER}">
    <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
    <method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
    <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
    <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
    <property name="ProtocolVersion" type="i" access="read"/>
    <signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
  </interface>
</node>"""

    @dbus.service.method(PROPERTIES, in_signature="ss", out_signature="v")
    def Get(self, interface, name):
        return self._properties()[name]

    @dbus.service.method(PROPERTIES, in_signature="s", out_signature="a{sv}")
    def GetAll(self, interface):
        return self._properties()


class Portal(dbus.service.Object):
    GROUP, KEY = "org.freedesktop.appearance", "color-scheme"

    def __init__(self, bus):
        self.scheme = 1
        super().__init__(dbus.service.BusName("org.freedesktop.portal.Desktop", bus),
                         "/org/freedesktop/portal/desktop")

    @dbus.service.method(SETTINGS, in_signature="ss", out_signature="v")
    def Read(self, group, key):
        if (group, key) != (self.GROUP, self.KEY):
            raise dbus.exceptions.DBusException(
                "no such setting", name="org.freedesktop.portal.Error.NotFound")
        # A real portal wraps this answer in one variant too many.
        return dbus.UInt32(self.scheme, variant_level=1)

    @dbus.service.signal(SETTINGS, signature="ssv")
    def SettingChanged(self, group, key, value):
        pass

    @dbus.service.method(CONTROL, in_signature="u")
    def Prefer(self, scheme):
        self.scheme = int(scheme)
        self.SettingChanged(self.GROUP, self.KEY, dbus.UInt32(scheme))


def main():
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    service = {"tray": Watcher, "portal": Portal}[sys.argv[1]](dbus.SessionBus())
    GLib.MainLoop().run()
    del service


if __name__ == "__main__":
    main()
