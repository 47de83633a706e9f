"""The windows that a window manager looks after, as it tells everybody."""

from dataclasses import dataclass

from Xlib import X, Xatom, error

from .server import ServerClient

HIDDEN = "_NET_WM_STATE_HIDDEN"


@dataclass(frozen=True)
class Client:
    id: int
    pid: int
    title: str
    names: tuple  # of the application: instance and class
    belongs_to: int  # the window that it is a dialog of; 0 for none
    states: tuple
    x: int
    y: int
    width: int
    height: int

    def at(self, x, y):
        """A place inside it, from its top left corner, on the desktop."""
        return self.x + x, self.y + y

    @property
    def minimized(self):
        return HIDDEN in self.states


class Clients(ServerClient):
    def _values(self, window, name):
        found = window.get_full_property(self._display.intern_atom(name), X.AnyPropertyType)
        return list(found.value) if found else []

    def all(self):
        """In the order in which they came."""
        found = map(self._describe, self._values(self._root, "_NET_CLIENT_LIST"))
        return [client for client in found if client is not None]

    def of(self, pid):
        """Those of one process."""
        return [client for client in self.all() if client.pid == pid]

    def _describe(self, number):
        window = self._display.create_resource_object("window", number)
        try:
            size, place = window.get_geometry(), window.translate_coords(self._root, 0, 0)
            dialog = window.get_wm_transient_for()
            return Client(number, next(iter(self._values(window, "_NET_WM_PID")), 0),
                          bytes(self._values(window, "_NET_WM_NAME")).decode(), window.get_wm_class(),
                          dialog.id if dialog else 0,
                          tuple(map(self._display.get_atom_name, self._values(window, "_NET_WM_STATE"))),
                          -place.x, -place.y, size.width, size.height)
        except error.XError:
            return None  # gone meanwhile

    def nudge_manager(self):
        """Sends a window manager an event that means nothing to it."""
        self._root.change_property(self._display.intern_atom("DORMEL_DESK"), Xatom.CARDINAL, 32, [1])
        self._display.sync()

    def is_shown(self, number):
        """Whether the window is on the screen, not minimised."""
        return self._display.create_resource_object("window", number).get_attributes().map_state == X.IsViewable

    def active(self):
        """The window that has the focus, as the window manager says; 0 for none."""
        return next(iter(self._values(self._root, "_NET_ACTIVE_WINDOW")), 0)

    def stacking(self):
        """From the bottom to the top."""
        return self._values(self._root, "_NET_CLIENT_LIST_STACKING")
