"""GNOME Shell, as far as anybody talks to it about its overview. Needs python3-dbus, python3-gi and a session bus."""

import threading

import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

SHELL = "org.gnome.Shell"


class Shell(dbus.service.Object):
    def __init__(self, address):
        DBusGMainLoop(set_as_default=True)
        self._bus = dbus.bus.BusConnection(address)
        self._owned = dbus.service.BusName(SHELL, self._bus)
        self.is_open = False
        super().__init__(self._bus, "/org/gnome/Shell")
        self._loop = GLib.MainLoop()
        threading.Thread(target=self._loop.run, daemon=True).start()

    def open_overview(self):
        self.is_open = True
        self.PropertiesChanged(SHELL, {"Mode": "user", "OverviewActive": True}, [])

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ssv")
    def Set(self, interface, name, value):
        if (interface, name) == (SHELL, "OverviewActive"):
            self.is_open = bool(value)
            self.PropertiesChanged(SHELL, {name: value}, [])

    @dbus.service.signal(dbus.PROPERTIES_IFACE, signature="sa{sv}as")
    def PropertiesChanged(self, interface, changed, invalidated):
        pass

    def close(self):
        self._loop.quit()
        self._bus.close()
