"""Keys by their place on the keyboard, pressed through XTEST: they go through grabs and show as hardware state."""

import contextlib

from Xlib import X
from Xlib.ext import xtest

from .server import ServerClient

# The place of every key the challenge can ask for, as Linux numbers keys, by its label on a US keyboard.
EVDEV = {
    "A": 30, "S": 31, "D": 32, "F": 33, "H": 35, "G": 34, "Z": 44, "X": 45, "C": 46, "V": 47, "B": 48,
    "Q": 16, "W": 17, "E": 18, "R": 19, "Y": 21, "T": 20, "O": 24, "U": 22, "I": 23, "P": 25, "L": 38,
    "J": 36, "K": 37, "N": 49, "M": 50,
    "L.Shift": 42, "R.Shift": 54, "L.Ctrl": 29, "L.Option": 56, "R.Option": 100, "L.Cmd": 125, "R.Cmd": 126,
}
SPACE, ESCAPE, TAB, RETURN, F9, UP, DOWN, RIGHT = 57, 1, 15, 28, 67, 103, 108, 106
LEFT_CTRL = EVDEV["L.Ctrl"]


def evdev_of_label(label):
    """The key that carries this label in a challenge on a US keyboard."""
    return EVDEV[label]


class Hands:
    """Base of the hands on a keyboard. They remember what they hold, so that letting go leaves nothing pressed.

    A subclass sends one key in _send(key, down), and has all of them arrive in _arrive().
    """

    _held = ()

    def press(self, *keys):
        for key in keys:
            self._held = (*self._held, key)
            self._send(key, True)
        self._arrive()

    def release(self, *keys):
        for key in keys:
            self._held = tuple(held for held in self._held if held != key)
            self._send(key, False)
        self._arrive()

    def tap(self, *keys):
        for key in keys:
            self.press(key)
            self.release(key)

    def chord(self, *keys):
        """All of them together, let go in reverse."""
        self.press(*keys)
        self.release(*reversed(keys))

    def let_go(self):
        """Releases everything, the last key first."""
        self.release(*reversed(self._held))

    def _arrive(self):
        pass


class Keyboard(Hands, ServerClient):
    def _send(self, key, down):
        xtest.fake_input(self._display, X.KeyPress if down else X.KeyRelease, key + 8)

    def _arrive(self):
        self._display.sync()

    def close(self):
        with contextlib.suppress(Exception):  # the server may be gone, and then nothing is held either
            self.let_go()
        super().close()
