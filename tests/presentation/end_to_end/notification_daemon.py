"""A real notification daemon on a private desktop, with its notifications as a person meets them.

The environment of the process has to be the desktop's, as the accessibility library asks it for its
bus.
"""

import os
import signal

import dbus
import dbus.bus
import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

from accessible_window import AccessibleWindow  # noqa: E402
from private_desktop import eventually  # noqa: E402

NAME = "org.freedesktop.Notifications"
# It shows buttons, can be read by assistive technology, and is started by no bus unless told to.
PROGRAM = next((path for path in ("/usr/lib/notification-daemon/notification-daemon",
                                  "/usr/libexec/notification-daemon") if os.path.exists(path)),
               "notification-daemon")


class Notification:
    """One that is on the screen: its texts, its buttons, and where on the screen they are."""

    def __init__(self, node):
        labels, buttons = [], {}
        for each in self._walk(node):
            if each.get_role() == Atspi.Role.LABEL:
                labels.append(each)
            elif each.get_role() == Atspi.Role.PUSH_BUTTON:
                buttons[each.get_name()] = self._middle(each)
        self.title, self.body = (label.get_name() for label in labels[:2])
        self.place = self._middle(labels[1])
        # The one that closes it has no title.
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
            # Buttons that a notification lacks are there all the same, but nobody sees them.
            if child.get_state_set().contains(Atspi.StateType.SHOWING):
                yield from self._walk(child)

    @staticmethod
    def _middle(node):
        place = node.get_extents(Atspi.CoordType.SCREEN)
        return place.x + place.width // 2, place.y + place.height // 2


class NotificationDaemon:
    def __init__(self, desktop):
        self.desktop = desktop
        self.bus = dbus.bus.BusConnection(desktop.env["DBUS_SESSION_BUS_ADDRESS"])
        self._service = os.path.join(desktop.env["XDG_DATA_HOME"], "dbus-1", "services",
                                     NAME + ".service")
        # Where it shows them: one that has the pointer on it does not go away by itself.
        desktop.output("xdotool", "mousemove", "1075", "60")

    def start(self):
        self.desktop.start(PROGRAM)
        self.wait()

    def let_the_bus_start_it(self):
        """Whenever it is called and does not run, as on most desktops."""
        os.makedirs(os.path.dirname(self._service), exist_ok=True)
        with open(self._service, "w", encoding="ascii") as file:
            file.write(f"[D-BUS Service]\nName={NAME}\nExec={PROGRAM}\n")
        self._reload()

    def _reload(self):
        self.bus.get_object("org.freedesktop.DBus", "/org/freedesktop/DBus").ReloadConfig(
            dbus_interface="org.freedesktop.DBus")

    def runs(self):
        return self.bus.name_has_owner(NAME)

    def wait(self):
        eventually(self.runs, "the notification daemon is on the bus")

    def pid(self):
        return int(self.bus.get_object("org.freedesktop.DBus", "/org/freedesktop/DBus")
                   .GetConnectionUnixProcessID(NAME, dbus_interface="org.freedesktop.DBus"))

    def kill(self):
        """As in a crash; nothing is told to anybody."""
        os.kill(self.pid(), signal.SIGKILL)
        eventually(lambda: not self.runs(), "the notification daemon is gone")

    def shown(self):
        """Those on the screen now."""
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
            return []  # it changed while it was looked at; whoever asks, asks again

    def find(self, says):
        """The one whose body has this text in it, once it has settled."""
        last = []

        def settled():
            now = [each for each in self.shown() if says in each.body]
            is_settled = now and now == last
            last[:] = now
            return is_settled and now

        return eventually(settled, f"a notification shows that says {says[:100]}")[0]

    # With the pointer, as a person does: what assistive technology can press, the daemon's buttons
    # do not hear.
    def press(self, notification, title):
        self._click(*notification.buttons[title])

    def click(self, notification):
        """On its text, and on none of its buttons."""
        self._click(*notification.place)

    def dismiss(self, notification):
        self._click(*notification.place_of_close)

    def _click(self, x, y):
        self.desktop.output("xdotool", "mousemove", str(x), str(y), "click", "1")

    def end(self):
        if os.path.exists(self._service):
            os.remove(self._service)
            self._reload()
        if self.runs():
            self.kill()
        self.bus.close()
