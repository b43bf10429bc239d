"""Real notification daemons on a private desktop, and their notifications as a person sees them.

The process must have the environment of that desktop, because the accessibility library reads the
address of its bus there.
"""

import glob
import os
import signal
import types

import dbus
import dbus.bus
import dbus.lowlevel
import dbus.mainloop.glib
import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

from accessible_window import AccessibleWindow  # noqa: E402
from private_desktop import eventually  # noqa: E402

NAME = "org.freedesktop.Notifications"
PATH = "/org/freedesktop/Notifications"
# Shows buttons, is accessible, and is not started by the bus unless a test configures that.
PROGRAM = next((path for path in ("/usr/lib/notification-daemon/notification-daemon",
                                  "/usr/libexec/notification-daemon") if os.path.exists(path)),
               "notification-daemon")
# Shows text without buttons, and is not started by the bus.
PROGRAM_WITHOUT_BUTTONS = next(iter(glob.glob("/usr/lib/*/notify-osd")), "notify-osd")


class Notification:
    """A visible notification: its texts, its buttons, and their places on the screen."""

    def __init__(self, node):
        labels, buttons = [], {}
        for each in self._walk(node):
            if each.get_role() == Atspi.Role.LABEL:
                labels.append(each)
            elif each.get_role() == Atspi.Role.PUSH_BUTTON:
                buttons[each.get_name()] = self._middle(each)
        self.title, self.body = (label.get_name() for label in labels[:2])
        self.place = self._middle(labels[1])
        # The button that closes it has no title.
        self.place_of_close = buttons.pop("")
        self.buttons = buttons

    def __eq__(self, other):
        return vars(self) == vars(other)

    def _walk(self, node):
        yield node
        for index in range(node.get_child_count()):
            child = node.get_child_at_index(index)
            if child is None:
                continue
            child.clear_cache()
            # Buttons that a notification does not use exist too, but are hidden.
            if child.get_state_set().contains(Atspi.StateType.SHOWING):
                yield from self._walk(child)

    @staticmethod
    def _middle(node):
        place = node.get_extents(Atspi.CoordType.SCREEN)
        return place.x + place.width // 2, place.y + place.height // 2


class Daemon:
    """Common to all daemons: the bus, the start and the end."""

    program = None
    place_of_pointer = None

    def __init__(self, desktop):
        self.desktop = desktop
        self.bus = dbus.bus.BusConnection(desktop.env["DBUS_SESSION_BUS_ADDRESS"])

    def place_pointer(self):
        self.desktop.output("xdotool", "mousemove", *self.place_of_pointer)

    def start(self):
        self.place_pointer()
        self.desktop.start(self.program)
        self.wait()

    def runs(self):
        return self.bus.name_has_owner(NAME)

    def wait(self):
        eventually(self.runs, "the notification daemon is on the bus")

    def pid(self):
        return int(self.bus.get_object("org.freedesktop.DBus", "/org/freedesktop/DBus")
                   .GetConnectionUnixProcessID(NAME, dbus_interface="org.freedesktop.DBus"))

    def capabilities(self):
        return [str(each) for each in self.bus.call_blocking(NAME, PATH, NAME, "GetCapabilities",
                                                             "", ())]

    def kill(self):
        """Ends it as a crash would."""
        os.kill(self.pid(), signal.SIGKILL)
        eventually(lambda: not self.runs(), "the notification daemon is gone")

    def end(self):
        if self.runs():
            self.kill()
        self.bus.close()


class NotificationDaemon(Daemon):
    program = PROGRAM
    # Where it shows notifications: one below the pointer does not expire.
    place_of_pointer = ("1075", "60")

    def __init__(self, desktop):
        super().__init__(desktop)
        self._service = os.path.join(desktop.env["XDG_DATA_HOME"], "dbus-1", "services",
                                     NAME + ".service")

    def let_the_bus_start_it(self):
        """Lets the bus start it on demand, as on most desktops."""
        self.place_pointer()
        os.makedirs(os.path.dirname(self._service), exist_ok=True)
        with open(self._service, "w", encoding="ascii") as file:
            file.write(f"[D-BUS Service]\nName={NAME}\nExec={PROGRAM}\n")
        self._reload()

    def _reload(self):
        self.bus.get_object("org.freedesktop.DBus", "/org/freedesktop/DBus").ReloadConfig(
            dbus_interface="org.freedesktop.DBus")

    def shown(self):
        """The visible notifications."""
        try:
            application = AccessibleWindow(self.pid()).application()
            nodes = [] if application is None else [
                application.get_child_at_index(index)
                for index in range(application.get_child_count())]
            for node in nodes:
                if node is not None:
                    node.clear_cache()
            return [Notification(node) for node in nodes
                    if node is not None and node.get_role() == Atspi.Role.ALERT
                    and node.get_state_set().contains(Atspi.StateType.SHOWING)]
        except (GLib.Error, ValueError, IndexError, KeyError, AttributeError,
                dbus.DBusException):
            return []  # it changed meanwhile; the caller asks again

    def find(self, says):
        """The notification whose body contains `says`, once its place no longer changes."""
        last = []

        def settled():
            now = [each for each in self.shown() if says in each.body]
            is_settled = now and now == last
            last[:] = now
            return is_settled and now

        return eventually(settled, f"a notification shows that says {says[:100]}")[0]

    # With the pointer: the buttons of the daemon ignore the actions of assistive technology.
    def press(self, notification, title):
        self._click(*notification.buttons[title])

    def click(self, notification):
        """Clicks its text, not a button."""
        self._click(*notification.place)

    def dismiss(self, notification):
        self._click(*notification.place_of_close)

    def _click(self, x, y):
        self.desktop.output("xdotool", "mousemove", str(x), str(y), "click", "1")

    def end(self):
        if os.path.exists(self._service):
            os.remove(self._service)
            self._reload()
        super().end()


class DaemonWithoutButtons(Daemon):
    program = PROGRAM_WITHOUT_BUTTONS
    # A notification below the pointer fades out.
    place_of_pointer = ("200", "800")

    def __init__(self, desktop):
        super().__init__(desktop)
        # Without a compositor its notifications are all black.
        self._compositor = desktop.start("xcompmgr", "-n")
        eventually(lambda: desktop.output("xdotool", "search", "--name", "^xcompmgr$"),
                   "windows are composed")

    def end(self):
        super().end()
        self._compositor.end()

    def text(self):
        """Title and body of the visible notification; None if there is none."""
        try:
            application = AccessibleWindow(self.pid()).application()
            for index in range(application.get_child_count()):
                node = application.get_child_at_index(index)
                node.clear_cache()
                if node.get_role() == Atspi.Role.NOTIFICATION:
                    return node.get_name(), node.get_description()
        except (GLib.Error, AttributeError, dbus.DBusException):
            pass  # it changed meanwhile; the caller asks again
        return None

    def shines(self):
        """Whether the screen shows light text at the place of its window."""
        # The daemon does not tell assistive technology whether a notification is visible.
        for window in self.desktop.output("xdotool", "search", "--onlyvisible", "--class",
                                          "^notify-osd$").split():
            place = dict(line.split("=", 1) for line in self.desktop.output(
                "xdotool", "getwindowgeometry", "--shell", window).splitlines())
            if not place:
                continue  # it was closed
            lightest = self.desktop.output(
                "import", "-silent", "-window", "root", "-crop",
                f"{place['WIDTH']}x{place['HEIGHT']}{int(place['X']):+}{int(place['Y']):+}",
                "-colorspace", "Gray", "-format", "%[fx:maxima]", "info:-")
            if lightest and float(lightest) > 0.9:
                return True
        return False


class NotificationMonitor:
    """Records the notifications that are sent on a bus, and the answers to them, in order."""

    def __init__(self, desktop):
        self._calls = {}
        self._bus = dbus.bus.BusConnection(desktop.env["DBUS_SESSION_BUS_ADDRESS"],
                                           mainloop=dbus.mainloop.glib.DBusGMainLoop())
        self._bus.add_message_filter(self._hear)
        self._bus.call_blocking(
            "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.Monitoring",
            "BecomeMonitor", "asu",
            ([f"type='method_call',interface='{NAME}',member='Notify'", "type='method_return'",
              "type='error'"], 0))

    def _hear(self, _, message):
        if isinstance(message, dbus.lowlevel.MethodCallMessage):
            if message.get_member() == "Notify":
                title, body, actions, hints = message.get_args_list()[3:7]
                self._calls[message.get_sender(), message.get_serial()] = types.SimpleNamespace(
                    title=str(title), body=str(body), actions=[str(each) for each in actions],
                    hints=dict(hints), answer=None)
        elif isinstance(message, (dbus.lowlevel.MethodReturnMessage, dbus.lowlevel.ErrorMessage)):
            call = self._calls.get((message.get_destination(), message.get_reply_serial()))
            if call is not None:
                call.answer = message
        # The bus disconnects a monitor that sends a reply.
        return dbus.lowlevel.HANDLER_RESULT_HANDLED

    def answered(self, count):
        """All calls, once there are `count` of them and each has been answered."""
        def all_answered():
            while GLib.MainContext.default().iteration(False):
                pass
            calls = list(self._calls.values())
            return len(calls) >= count and all(call.answer for call in calls) and calls

        return eventually(all_answered, f"{count} notifications are sent and answered")

    def end(self):
        self._bus.close()
