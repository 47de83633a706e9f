"""Hands on the keyboard of GNOME Shell, by the service that its remote desktop uses."""

import dbus

SERVICE, PATH = "org.gnome.Mutter.RemoteDesktop", "/org/gnome/Mutter/RemoteDesktop"
UNUSED = 194  # F24


class Keyboard:
    """Keys are Linux key numbers. Remembers what it holds, so that letting go leaves nothing pressed."""

    def __init__(self, shell):
        self._shell = shell
        self._session = shell.call(SERVICE, PATH, SERVICE + ".CreateSession")
        shell.call(SERVICE, self._session, SERVICE + ".Session.Start")
        self._held = []
        self.tap(UNUSED)  # the seat has a keyboard only once one was touched

    @property
    def held(self):
        return tuple(self._held)

    def _key(self, key, down):
        self._shell.call(SERVICE, self._session, SERVICE + ".Session.NotifyKeyboardKeycode", dbus.UInt32(key), down)

    def press(self, *keys):
        for key in keys:
            self._key(key, True)
            self._held.append(key)

    def release(self, *keys):
        for key in keys:
            self._key(key, False)
            if key in self._held:
                self._held.remove(key)

    def tap(self, *keys):
        for key in keys:
            self.press(key)
            self.release(key)

    def chord(self, *keys):
        """All of them together, let go in reverse."""
        self.press(*keys)
        self.release(*reversed(keys))

    def let_go(self):
        self.release(*reversed(self._held))

    def close(self):
        try:
            self.let_go()
            self._shell.call(SERVICE, self._session, SERVICE + ".Session.Stop")
        except dbus.DBusException:
            pass  # the shell went first, and with it what was held
