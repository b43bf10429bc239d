"""An application on the session bus that the tests ask to quit.

quit_action_service.py NAME BEHAVIOUR [OTHER_NAME]

Prints "ready" once it is on the bus, and "quit" each time its action is called.
"""

import os
import sys
import time

from gi.repository import Gio, GLib

ACTIONS = """<interface name="org.gtk.Actions">
  <method name="List"><arg type="%s" direction="out"/></method>
  <method name="Describe"><arg type="s" direction="in"/><arg type="%s" direction="out"/></method>
</interface>"""
APPLICATION = """<interface name="org.freedesktop.Application"><method name="ActivateAction">
  <arg type="s" direction="in"/><arg type="av" direction="in"/><arg type="a{sv}" direction="in"/>
</method></interface>"""

# The replies of an application with its own implementation: to List, to Describe, to the call.
CUSTOM = {
    "lists-text": (("s", "quit"), ("(bgav)", (True, "", [])), None),
    "lists-numbers": (("au", [1, 2]), ("(bgav)", (True, "", [])), None),
    "describes-text": (("as", ["quit"]), ("s", "enabled"), None),
    "describes-little": (("as", ["quit"]), ("(b)", (True,)), None),
    "refuses": (("as", ["quit"]), ("(bgav)", (True, "", [])), "org.example.Error.Refused"),
    "answers": (("as", ["a", "quit", "z"]), ("(bgav)", (True, "", [])), None),
    "lists-upper-case": (("as", ["Quit", "app.quit", "quit "]), ("(bgav)", (True, "", [])), None),
}


def say(line):
    print(line, flush=True)


def path_of(name):
    return "/" + name.replace(".", "/").replace("-", "_")


class Application:
    """An application based on the usual library."""

    def __init__(self, name, behaviour):
        self.behaviour = behaviour
        self.application = Gio.Application(application_id=name)
        if behaviour != "absent":
            kind = GLib.VariantType("s") if behaviour == "with-parameter" else None
            action = Gio.SimpleAction.new("quit", kind)
            action.set_enabled(behaviour != "disabled")
            action.connect("activate", self.quit)
            self.application.add_action(action)
        self.application.add_action(Gio.SimpleAction.new("about", None))
        self.application.connect("activate", self.activate)

    def activate(self, application):
        application.hold()
        say("ready")

    def quit(self, _action, _parameter):
        say("quit")
        if self.behaviour == "asks-its-user":
            time.sleep(3600)
        elif self.behaviour == "ends-at-once":
            os._exit(0)
        elif self.behaviour == "present":
            self.application.quit()

    def run(self):
        self.application.run([])


class CustomApplication:
    """An application with its own implementation of the interfaces."""

    def __init__(self, name, behaviour):
        self.name = name
        self.answers = CUSTOM.get(behaviour)

    def called(self, _connection, _sender, _path, _interface, method, _arguments, invocation):
        listed, described, error = self.answers
        if method == "ActivateAction":
            say("quit")
            if error:
                invocation.return_dbus_error(error, "no")
            else:
                invocation.return_value(None)
        else:
            kind, value = listed if method == "List" else described
            invocation.return_value(GLib.Variant("(" + kind + ")", (value,)))

    def run(self):
        bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        if self.answers:
            kinds = (self.answers[0][0], self.answers[1][0])
            for text in (ACTIONS % kinds, APPLICATION):
                node = Gio.DBusNodeInfo.new_for_xml("<node>" + text + "</node>")
                bus.register_object(path_of(self.name), node.interfaces[0], self.called)
        own(bus, self.name)
        say("ready")
        GLib.MainLoop().run()


def own(bus, name):
    bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                  "RequestName", GLib.Variant("(su)", (name, 0)), None, 0, -1)


def main():
    name, behaviour = sys.argv[1:3]
    for other in sys.argv[3:]:
        own(Gio.bus_get_sync(Gio.BusType.SESSION), other)
    is_custom = behaviour in CUSTOM or behaviour == "bare"
    (CustomApplication if is_custom else Application)(name, behaviour).run()


main()
