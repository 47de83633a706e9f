"""Hands on the keyboard and the pointer of a compositor, by a virtual keyboard or by what KWin lets tests do.

Keys are Linux key numbers. One injector is kept: the first key of a new one reaches nobody as a press.
"""

import contextlib
import ctypes
import os
import time

from ..keyboard import EVDEV, Hands
from .wire import Connection

MODIFIERS = {EVDEV["L.Shift"]: 1, EVDEV["R.Shift"]: 1, EVDEV["L.Ctrl"]: 4, 97: 4, EVDEV["L.Option"]: 8,
             EVDEV["R.Option"]: 8, EVDEV["L.Cmd"]: 64, EVDEV["R.Cmd"]: 64}


def keymap(layout=b"us"):
    """The text of the usual keymap of this layout."""
    class Names(ctypes.Structure):
        _fields_ = [(name, ctypes.c_char_p) for name in ("rules", "model", "layout", "variant", "options")]

    library = ctypes.CDLL("libxkbcommon.so.0")
    for function in ("xkb_context_new", "xkb_keymap_new_from_names", "xkb_keymap_get_as_string"):
        getattr(library, function).restype = ctypes.c_void_p
    context = ctypes.c_void_p(library.xkb_context_new(0))
    made = library.xkb_keymap_new_from_names(context, ctypes.byref(Names(b"evdev", b"pc105", layout, b"", b"")), 0)
    return ctypes.string_at(library.xkb_keymap_get_as_string(ctypes.c_void_p(made), 1)) + b"\0"


class Keyboard(Hands):
    def __init__(self, compositor):
        self._fake = self._keys = self._trusted = None
        if compositor.keys == "fake-input":
            self._trusted = compositor.trusted()
            self._connection = connection = Connection(compositor.path, self._trusted[0])
            self._fake = connection.bind("org_kde_kwin_fake_input", 4)
            self._fake.authenticate("desk", "tests")
        else:
            self._connection = connection = Connection(compositor.path)
            seat = connection.bind("wl_seat")
            self._keys = connection.bind("zwp_virtual_keyboard_manager_v1").create_virtual_keyboard(seat)
            self._pointer = connection.bind("zwlr_virtual_pointer_manager_v1").create_virtual_pointer(seat)
            text = keymap()
            memory = os.memfd_create("keymap")
            os.write(memory, text)
            self._keys.keymap(1, memory, len(text))
            os.close(memory)
        connection.roundtrip()

    def _send(self, key, down):
        if self._fake:
            self._fake.keyboard_key(key, int(down))
        else:
            self._keys.key(int(time.monotonic() * 1000) & 0xFFFFFFFF, key, int(down))
            if key in MODIFIERS:
                bits = 0
                for other in self._held:
                    bits |= MODIFIERS.get(other, 0)
                self._keys.modifiers(bits, 0, 0, 0)

    def _arrive(self):
        self._connection.roundtrip()

    def move(self, dx, dy):
        """From where the pointer is."""
        if self._fake:
            self._fake.pointer_motion(dx, dy)
        else:
            self._pointer.motion(int(time.monotonic() * 1000) & 0xFFFFFFFF, dx, dy)
            self._pointer.frame()
        self._connection.roundtrip()

    def close(self):
        with contextlib.suppress(Exception):  # the compositor may be gone, and then nothing is held either
            self.let_go()
        self._connection.close()
        if self._trusted:
            self._trusted[1].close()
            self._trusted[2].wait()
