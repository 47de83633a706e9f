"""Looking at the screens: pictures, single pixels, and who stands on top of whom."""

import struct
import threading
import time
import zlib
from dataclasses import dataclass

from Xlib import X, error
from Xlib.ext import res

from .server import ServerClient
from .wait import No

ALL_PLANES = 0xFFFFFFFF


@dataclass(frozen=True)
class Monitor:
    name: str
    x: int
    y: int
    width: int
    height: int
    primary: bool

    def contains(self, x, y, width, height):
        return (x <= self.x and y <= self.y and x + width >= self.x + self.width
                and y + height >= self.y + self.height)

    def contains_point(self, x, y):
        return self.x <= x < self.x + self.width and self.y <= y < self.y + self.height

    def overlaps(self, x, y, width, height):
        return (x < self.x + self.width and x + width > self.x and y < self.y + self.height and y + height > self.y)

    def __str__(self):
        return f"{self.width} × {self.height}"


@dataclass(frozen=True)
class TopWindow:
    id: int
    pid: int  # 0 when its client is gone or remote
    x: int
    y: int
    width: int
    height: int
    override: bool

    @property
    def rectangle(self):
        return self.x, self.y, self.width, self.height


class Picture:
    """Pixels of a rectangle of the desktop, as the server holds them (blue, green, red, unused)."""

    def __init__(self, width, height, data):
        self.width = width
        self.height = height
        self.data = data

    def pixel(self, x, y):
        """(red, green, blue)"""
        at = (y * self.width + x) * 4
        return self.data[at + 2], self.data[at + 1], self.data[at]

    def brighter_than(self, level, x=0, y=0, width=None, height=None):
        """How many pixels of the rectangle have a green above the level (all our greys carry it)."""
        width = self.width if width is None else width
        height = self.height if height is None else height
        x, y = max(0, x), max(0, y)
        count = 0
        for row in range(y, min(self.height, y + height)):
            line = self.data[(row * self.width + x) * 4 + 1:(row * self.width + min(self.width, x + width)) * 4:4]
            count += sum(1 for value in line if value > level) if line and max(line) > level else 0
        return count

    def brightest(self):
        """The largest value of any colour in the picture."""
        return max(max(self.data[0::4]), max(self.data[1::4]), max(self.data[2::4]))

    def save(self, path):
        """Writes a PNG."""
        lines = bytearray(self.height * (1 + 3 * self.width))
        row = bytearray(1 + 3 * self.width)
        step = self.width * 4
        for y in range(self.height):
            line = self.data[y * step:(y + 1) * step]
            row[1::3], row[2::3], row[3::3] = line[2::4], line[1::4], line[0::4]
            lines[y * len(row):(y + 1) * len(row)] = row

        def chunk(kind, body):
            return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))

        with open(path, "wb") as file:
            file.write(b"\x89PNG\r\n\x1a\n")
            file.write(chunk(b"IHDR", struct.pack(">IIBBBBB", self.width, self.height, 8, 2, 0, 0, 0)))
            file.write(chunk(b"IDAT", zlib.compress(bytes(lines), 1)))
            file.write(chunk(b"IEND", b""))
        return path


class Eyes(ServerClient):
    def monitors(self):
        """What is lit now, in the server's order."""
        if not self._display.has_extension("RANDR"):
            at = self._root.get_geometry()
            return [Monitor("screen", 0, 0, at.width, at.height, True)]
        answer = self._root.xrandr_get_monitors()
        return [Monitor(self._display.get_atom_name(m.name), m.x, m.y, m.width_in_pixels, m.height_in_pixels,
                        bool(m.primary)) for m in answer.monitors]

    def primary(self):
        monitors = self.monitors()
        return next((m for m in monitors if m.primary), monitors[0])

    def picture(self, monitor):
        return self.rectangle(monitor.x, monitor.y, monitor.width, monitor.height)

    def rectangle(self, x, y, width, height):
        image = self._root.get_image(x, y, width, height, X.ZPixmap, ALL_PLANES)
        return Picture(width, height, image.data)

    def pixel(self, x, y):
        return self.rectangle(x, y, 1, 1).pixel(0, 0)

    # A monitor's pixels at its corners, along its edges and off its middle, where no content of a lock stands.

    @staticmethod
    def edge_points(monitor, inset=2):
        left, right = monitor.x + inset, monitor.x + monitor.width - 1 - inset
        top, bottom = monitor.y + inset, monitor.y + monitor.height - 1 - inset
        middle_x, middle_y = monitor.x + monitor.width // 2, monitor.y + monitor.height // 2
        return [(left, top), (right, top), (left, bottom), (right, bottom), (middle_x, top), (middle_x, bottom),
                (left, middle_y), (right, middle_y)]

    def dark(self, monitors=None, level=12):
        """True when every edge point of every monitor is black (the lock's own black is not brighter than 11)."""
        monitors = monitors if monitors is not None else self.monitors()
        for monitor in monitors:
            for x, y in self.edge_points(monitor):
                # Monitors may overlap; what stands there may then be the middle of another one's picture.
                if any(other.x + 4 <= x < other.x + other.width - 4 and other.y + 4 <= y < other.y + other.height - 4
                       for other in monitors):
                    continue
                colour = self.pixel(x, y)
                if max(colour) > level:
                    return No(f"{monitor.name} at {x},{y} shows {colour}")
        return True

    # Windows.

    def stack(self):
        """Viewable top-level windows that show something, the topmost first."""
        windows = []
        for window in reversed(self._root.query_tree().children):
            try:
                attributes = window.get_attributes()
                if attributes.map_state != X.IsViewable or attributes.win_class == X.InputOnly:
                    continue
                at = window.get_geometry()
            except (error.BadWindow, error.BadDrawable):
                continue  # gone since the tree was read
            border = 2 * at.border_width
            windows.append(TopWindow(window.id, self.pid_of(window.id), at.x, at.y, at.width + border,
                                     at.height + border, bool(attributes.override_redirect)))
        return windows

    def windows_of(self, pid):
        return [w for w in self.stack() if w.pid == pid]

    def pid_of(self, window_id):
        """The process whose client made the window; 0 when it is gone. Never remembered: ids are used again."""
        ids = self._display.res_query_client_ids([{"client": window_id, "mask": res.LocalClientPIDMask}]).ids
        return ids[0].value[0] if ids and ids[0].value else 0

    def covered(self, pids, monitors=None):
        """True when, on every monitor, the topmost window that touches it belongs to one of pids and fills it."""
        pids = {pids} if isinstance(pids, int) else set(pids)
        stack = self.stack()
        for monitor in monitors if monitors is not None else self.monitors():
            for window in stack:
                if not monitor.overlaps(*window.rectangle):
                    continue
                if window.pid not in pids:
                    return No(f"{monitor.name}: a window of process {window.pid} is on top")
                if monitor.contains(*window.rectangle):
                    break
            else:
                return No(f"{monitor.name}: no window covers it")
        return True


class Sampler(threading.Thread):
    """Looks at a few points without pause and remembers for how long one of them was not black.

    Its own connection, its own thread. `longest` is the longest time between the last look that saw every point black
    and the next look that did; `looks` says how often it looked.
    """

    def __init__(self, server, points, level=12):
        super().__init__(name="sampler", daemon=True)
        self._eyes, self._points, self._level = Eyes(server), list(points), level
        self._asked_to_stop = False
        self.looks, self.exposures, self.longest = 0, 0, 0.0

    def run(self):
        dark_at, exposed = None, False
        while not self._asked_to_stop:
            now = time.monotonic()
            seen = all(max(self._eyes.pixel(x, y)) <= self._level for x, y in self._points)
            self.looks += 1
            if seen:
                if exposed:
                    self.longest = max(self.longest, time.monotonic() - dark_at)
                dark_at, exposed = now, False
            elif dark_at is not None and not exposed:
                exposed = True
                self.exposures += 1
        if exposed:
            self.longest = max(self.longest, time.monotonic() - dark_at)
        self._eyes.close()

    def __enter__(self):
        self.start()
        return self

    def __exit__(self, *_):
        self._asked_to_stop = True
        self.join()

    def __str__(self):
        return (f"{self.looks} looks, {self.exposures} of them not black, for {self.longest * 1000:.0f} ms at most")
