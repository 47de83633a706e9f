"""An ordinary application that fills every monitor and writes down every key that reaches it, and when it has the
keyboard."""

import mmap
import os
import struct
import threading
import time

from ..wait import until
from ..witness import KeyRecord
from .wire import Connection


class Witness(KeyRecord):
    """`colour` fills its windows. One more window opens on every monitor that comes."""

    def __init__(self, path, colour=0xE8E4DC, waits_for_keyboard=True):
        super().__init__()
        self.focus = []  # (time, whether it has the keyboard from then on)
        self.ended = None
        self._colour = 0xFF000000 | colour
        self._connection = connection = Connection(path)
        self._compositor = connection.bind("wl_compositor", 4)
        self._shm = connection.bind("wl_shm")
        self._shell = connection.bind("xdg_wm_base")
        self._shell.on["ping"] = lambda serial: self._shell.pong(serial)
        self._seat = connection.bind("wl_seat", 4)
        self._keyboard = None
        self._seat.on["capabilities"] = self._capable
        self._windows = {}
        self.shown = set()  # the windows that fill their monitor
        self._closing = False
        connection.roundtrip()
        self._look()
        self._thread = threading.Thread(target=self._run, name="witness", daemon=True)
        self._thread.start()
        if waits_for_keyboard:
            until("the document fills every monitor and has the keyboard",
                  lambda: self.focused and len(self.shown) == len(self._windows), 5)

    @property
    def focused(self):
        return bool(self.focus) and self.focus[-1][1]

    def _capable(self, capabilities):
        if capabilities & 2 and self._keyboard is None:
            self._keyboard = self._seat.get_keyboard()
            self._keyboard.on["keymap"] = lambda kind, fd, size: os.close(fd)
            self._keyboard.on["enter"] = lambda serial, surface, keys: self._note(True)
            self._keyboard.on["leave"] = lambda serial, surface: self._note(False)
            self._keyboard.on["key"] = lambda serial, at, key, state: self._note_key(key, state)

    def _note(self, focused):
        with self._lock:
            self.focus.append((time.monotonic(), focused))

    def _look(self):
        for number in self._connection.names("wl_output"):
            if number not in self._windows:
                self._windows[number] = self._open(self._connection.bind("wl_output", 2, number))
        for number in [n for n in self._windows if n not in self._connection.globals]:
            del self._windows[number]

    def _open(self, output):
        surface = self._compositor.create_surface()
        xdg = self._shell.get_xdg_surface(surface)
        window = xdg.get_toplevel()
        size = [640, 480]
        window.set_title("Chapter seven")
        window.set_fullscreen(output)
        window.on["configure"] = lambda width, height, states: size.__setitem__(slice(None), [width or 640,
                                                                                              height or 480])

        def configured(serial):
            xdg.ack_configure(serial)
            surface.attach(self._buffer(*size), 0, 0)
            surface.damage(0, 0, *size)
            surface.commit()
            if size != [640, 480]:
                self.shown.add(window.id)

        xdg.on["configure"] = configured
        surface.commit()
        return window

    def _buffer(self, width, height):
        memory = os.memfd_create("window")
        os.ftruncate(memory, width * height * 4)
        with mmap.mmap(memory, width * height * 4) as pixels:
            pixels.write(struct.pack("=I", self._colour) * (width * height))
        pool = self._shm.create_pool(memory, width * height * 4)
        buffer = pool.create_buffer(0, width, height, width * 4, 1)
        pool.destroy()
        os.close(memory)
        return buffer

    def _run(self):
        try:
            while not self._closing:
                self._connection.dispatch(0.2)
                self._look()
        except OSError:
            self.ended = time.monotonic()

    def close(self):
        self._closing = True
        self._thread.join(2)
        self._connection.close()


class Overlay(Witness):
    """One that lies over everything on every monitor and wants the keyboard for itself."""

    def __init__(self, path):
        self._layers = None
        super().__init__(path, colour=0x2266AA, waits_for_keyboard=False)

    def _open(self, output):
        self._layers = self._layers or self._connection.bind("zwlr_layer_shell_v1", 4)
        surface = self._compositor.create_surface()
        layer = self._layers.get_layer_surface(surface, output, 3, "rival")
        layer.set_size(0, 0)
        layer.set_anchor(15)
        layer.set_exclusive_zone(-1)
        layer.set_keyboard_interactivity(1)

        def configured(serial, width, height):
            layer.ack_configure(serial)
            surface.attach(self._buffer(width, height), 0, 0)
            surface.damage(0, 0, width, height)
            surface.commit()
            self.shown.add(layer.id)

        layer.on["configure"] = configured
        surface.commit()
        return layer
