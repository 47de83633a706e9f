"""Keys by their place on the keyboard, pressed through XTEST: they go through grabs and show as hardware state."""

from Xlib import XK, X
from Xlib.ext import xtest

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


class Keyboard:
    """Hands on the keyboard. Remembers what it holds, so that letting go leaves nothing pressed."""

    def __init__(self, server):
        self._display = server.open()
        self._held = []

    def place_of(self, name):
        """Where a key is that the server's keymap gives this name ("Up"): not every server numbers the keys beside the
        letters as Linux does."""
        return self._display.keysym_to_keycode(XK.string_to_keysym(name)) - 8

    @property
    def held(self):
        return tuple(self._held)

    def press(self, *keys):
        for key in keys:
            xtest.fake_input(self._display, X.KeyPress, key + 8)
            self._held.append(key)
        self._display.sync()

    def release(self, *keys):
        for key in keys:
            xtest.fake_input(self._display, X.KeyRelease, key + 8)
            if key in self._held:
                self._held.remove(key)
        self._display.sync()

    def tap(self, *keys):
        for key in keys:
            self.press(key)
            self.release(key)

    def let_go(self):
        """Releases everything, the last key first."""
        self.release(*reversed(self._held))

    def pressed(self):
        """What the server says is down, as Linux key numbers."""
        state = self._display.query_keymap()
        return sorted(code - 8 for code in range(8, 256) if state[code // 8] >> (code % 8) & 1)

    # The pointer belongs to the same hands.

    def move(self, x, y):
        xtest.fake_input(self._display, X.MotionNotify, x=x, y=y)
        self._display.sync()

    def button(self, number, down):
        xtest.fake_input(self._display, X.ButtonPress if down else X.ButtonRelease, number)
        self._display.sync()

    def close(self):
        try:
            self.let_go()
            self._display.close()
        except Exception:  # the server may be gone, and then nothing is held either
            pass
