"""When each monitor showed something new, and whether its corner was black then (sway, labwc)."""

import mmap
import os
import threading

from ..wait import NotSeen
from .wire import Connection

SIDE = 4
BLACK = 12  # in every channel


class Frames:
    """Writes down every frame in which something changed, from a thread of its own."""

    def __init__(self, path):
        self.seen = []  # (when it was shown on the monotonic clock, the output's number, whether its corner was black)
        self._connection = connection = Connection(path)
        self._shm = connection.bind("wl_shm")
        self._manager = connection.bind("zwlr_screencopy_manager_v1", 2)
        if self._manager is None:
            connection.close()
            raise NotSeen("this compositor tells nobody of its frames")
        self._buffers = {}
        self._closing = False
        for number in connection.names("wl_output"):
            self._ask(number, connection.bind("wl_output", 2, number))
        connection.roundtrip()
        self._thread = threading.Thread(target=self._run, name="frames", daemon=True)
        self._thread.start()

    def _ask(self, number, output):
        """For its next frame, and then for the one after."""
        frame = self._manager.capture_output_region(0, output, 0, 0, SIDE, SIDE)

        def ready(high, low, nanoseconds):
            pixels = self._buffers[number][1]
            dark = all(max(pixels[at:at + 3]) <= BLACK for at in range(0, len(pixels), 4))
            self.seen.append(((high << 32 | low) + nanoseconds / 1e9, number, dark))
            frame.destroy()
            self._ask(number, output)
        frame.on["buffer"] = lambda *shape: frame.copy_with_damage(self._buffer(number, *shape))
        frame.on["ready"] = ready

    def _buffer(self, number, layout, width, height, stride):
        if number not in self._buffers:
            memory = os.memfd_create("frame")
            os.ftruncate(memory, height * stride)
            pool = self._shm.create_pool(memory, height * stride)
            self._buffers[number] = pool.create_buffer(0, width, height, stride, layout), mmap.mmap(memory, height * stride)
            pool.destroy()
            os.close(memory)
        return self._buffers[number][0]

    def _run(self):
        try:
            while not self._closing:
                self._connection.dispatch(0.2)
        except OSError:
            pass

    def all_since(self, moment, counts=lambda dark: True):
        """When the last of the outputs had shown its first frame since then that counts; None before that."""
        first = {}
        for when, number, dark in list(self.seen):
            if when >= moment and counts(dark):
                first.setdefault(number, when)
        return max(first.values()) if len(first) == len(self._buffers) else None

    def close(self):
        self._closing = True
        self._thread.join(2)
        self._connection.close()
