"""The dashboard window as assistive technology sees it."""

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

from private_desktop import eventually  # noqa: E402


class AccessibleWindow:
    """Looks everything up again for each query, because the program changes meanwhile."""

    def __init__(self, pid):
        self.pid = pid
        Atspi.init()

    def application(self):
        desktop = Atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            try:
                child = desktop.get_child_at_index(index)
                if child is not None and child.get_process_id() == self.pid:
                    return child
            except GLib.Error:
                continue  # it ended meanwhile
        return None

    def frames(self):
        application = self.application()
        return [] if application is None else [
            node for node in self._children(application)
            if node.get_role() in (Atspi.Role.FRAME, Atspi.Role.WINDOW)]

    def _children(self, node):
        for index in range(node.get_child_count()):
            child = node.get_child_at_index(index)
            if child is not None:
                # The cached properties may be outdated.
                child.clear_cache()
                yield child

    def _walk(self, node):
        yield node
        # A table may have very many cells; `cells` reads the first rows.
        if node.get_role() == Atspi.Role.TABLE:
            return
        for child in self._children(node):
            yield from self._walk(child)

    def showing(self, role=None, name=None):
        """The visible nodes of this role and name, which is a text or a predicate."""
        found = []
        try:
            application = self.application()
            for node in self._walk(application) if application is not None else ():
                if role is not None and node.get_role() != role:
                    continue
                said = node.get_name() or ""
                if name is not None and not (name(said) if callable(name) else said == name):
                    continue
                if node.get_state_set().contains(Atspi.StateType.SHOWING):
                    found.append(node)
        except GLib.Error:
            pass  # the tree changed meanwhile; the caller asks again
        return found

    def find(self, role, name):
        return eventually(lambda: self.showing(role, name), f"{role} named {name} shows")[0]

    def label(self, name):
        return self.find(Atspi.Role.LABEL, name)

    @staticmethod
    def has_focus(node):
        node.clear_cache()
        return node.get_state_set().contains(Atspi.StateType.FOCUSED)

    @staticmethod
    def is_enabled(node):
        node.clear_cache()
        return node.get_state_set().contains(Atspi.StateType.ENABLED)

    @staticmethod
    def is_checked(node):
        node.clear_cache()
        return node.get_state_set().contains(Atspi.StateType.CHECKED)

    def press(self, role, name):
        def action():
            """The control and the number of its action; none while it is disabled."""
            node = self.find(role, name)
            node.clear_cache()
            return next(((node, index) for index in range(node.get_n_actions())
                         if (node.get_action_name(index) or "").lower()
                         in ("press", "click", "toggle", "check")), None)
        node, index = eventually(action, f"{role} named {name} can be pressed")
        node.do_action(index)

    def go_to(self, title):
        """Selects a route in the sidebar and waits until the page shows its title."""
        self.press(Atspi.Role.RADIO_BUTTON, title)
        self.label(title)

    def refresh(self):
        self.press(Atspi.Role.PUSH_BUTTON, "Refresh")

    def type_into(self, name, text):
        node = self.find(Atspi.Role.TEXT, name)
        node.set_text_contents(text)

    def text_of(self, name):
        node = self.find(Atspi.Role.TEXT, name)
        return node.get_text(0, node.get_character_count())

    def cells(self):
        """The names of the cells of the process table, row by row."""
        tables = self.showing(Atspi.Role.TABLE)
        if not tables:
            return []
        table = tables[0]
        rows = []
        try:
            table.clear_cache()
            columns = table.get_n_columns()
            for row in range(min(table.get_n_rows(), 40)):
                cells = []
                for column in range(columns):
                    cell = table.get_accessible_at(row, column)
                    cell.clear_cache()
                    cells.append(cell.get_name())
                rows.append(cells)
        except (GLib.Error, AttributeError):
            return []  # a sample came in between
        return rows
