"""A desktop's menu bar: takes the menus that applications export, and chooses from them.

Needs python3-dbus and python3-gi, and a session bus of its own.
"""

import threading

import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

from .wait import until

REGISTRAR = "com.canonical.AppMenu.Registrar"
MENU = "com.canonical.dbusmenu"


class MenuBar(dbus.service.Object):
    def __init__(self, desk):
        self.address = desk.start_bus("menu-bus")
        DBusGMainLoop(set_as_default=True)
        self._bus = dbus.bus.BusConnection(self.address)
        self._owned = dbus.service.BusName(REGISTRAR, self._bus)
        self._registered = {}
        super().__init__(self._bus, "/com/canonical/AppMenu/Registrar")
        self._loop = GLib.MainLoop()
        threading.Thread(target=self._loop.run, daemon=True).start()

    def environment(self):
        """What a program needs to find it."""
        return {"DBUS_SESSION_BUS_ADDRESS": self.address}

    @dbus.service.method(REGISTRAR, in_signature="uo", sender_keyword="sender")
    def RegisterWindow(self, window, path, sender=None):
        self._registered[int(window)] = (sender, path)

    @dbus.service.method(REGISTRAR, in_signature="u")
    def UnregisterWindow(self, window):
        self._registered.pop(int(window), None)

    def _menu(self, window):
        sender, path = until("the window has a menu", lambda: self._registered.get(window), 5)
        return dbus.Interface(self._bus.get_object(sender, path), MENU)

    def titles(self, window):
        """The menus of a window: each title with its items, those that cannot be chosen now in brackets."""
        _, (_, _, menus) = self._menu(window).GetLayout(0, -1, dbus.Array([], signature="s"))
        return {str(properties["label"]): [_title(item) for _, item, _ in items] for _, properties, items in menus}

    def choose(self, window, title):
        menu = self._menu(window)
        _, (_, _, menus) = menu.GetLayout(0, -1, dbus.Array([], signature="s"))
        item = next(number for _, _, items in menus for number, item, _ in items if item.get("label") == title)
        # Nobody waits for an answer: the application may be gone before it comes.
        menu.Event(item, "clicked", dbus.String("", variant_level=1), dbus.UInt32(0), ignore_reply=True)

    def close(self):
        self._loop.quit()
        self._bus.close()


def _title(item):
    if item.get("type") == "separator":
        return "-"
    return str(item["label"]) if item.get("enabled", True) else f"({item['label']})"
