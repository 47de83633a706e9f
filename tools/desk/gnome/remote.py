"""Hands on the keyboard of GNOME Shell, by the service that its remote desktop uses."""

import dbus

from ..keyboard import Hands

SERVICE, PATH = "org.gnome.Mutter.RemoteDesktop", "/org/gnome/Mutter/RemoteDesktop"
UNUSED = 194  # F24


class Keyboard(Hands):
    def __init__(self, shell):
        self._shell = shell
        self._session = shell.call(SERVICE, PATH, SERVICE + ".CreateSession")
        shell.call(SERVICE, self._session, SERVICE + ".Session.Start")
        self.tap(UNUSED)  # the seat has a keyboard only once one was touched

    def _send(self, key, down):
        self._shell.call(SERVICE, self._session, SERVICE + ".Session.NotifyKeyboardKeycode", dbus.UInt32(key), down)

    def close(self):
        try:
            self.let_go()
            self._shell.call(SERVICE, self._session, SERVICE + ".Session.Stop")
        except dbus.DBusException:
            pass  # the shell went first, and with it what was held
