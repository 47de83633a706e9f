"""A private Xorg on the dummy driver: sixteen outputs that can be plugged and pulled, no hardware, no console.

The server runs on a seat of its own, so it opens no virtual terminal and needs no root. Clients are let in by a
cookie, as on a real desktop, so a program that was not handed XAUTHORITY fails here as it would there.
"""

import contextlib
import os
import secrets
import select
import socket
import struct
import subprocess
import time

from Xlib import Xatom
from Xlib import display as xdisplay
from Xlib.protocol import display as xprotocol
from Xlib.protocol import event as xevent

from . import processes
from .wait import NotSeen

XORG = next((p for p in ("/usr/lib/xorg/Xorg", "/usr/bin/Xorg") if os.path.exists(p)), "Xorg")

CONFIG = """
Section "ServerFlags"
  Option "AutoAddDevices" "false"
  Option "AutoEnableDevices" "false"
  Option "AutoAddGPU" "false"
  Option "BlankTime" "0"
EndSection
Section "Device"
  Identifier "card"
  Driver "dummy"
  VideoRam 262144
EndSection
Section "Monitor"
  Identifier "wide"
  HorizSync 5-1000
  VertRefresh 5-200
EndSection
Section "Screen"
  Identifier "screen"
  Device "card"
  Monitor "wide"
  DefaultDepth 24
  SubSection "Display"
    Depth 24
    Virtual 1024 768
  EndSubSection
EndSection
"""


class Server(processes.Running):
    """One X server. `monitors` are (width, height) of what is plugged in from the start, left to right."""

    def __init__(self, folder, monitors=((1920, 1080), (1280, 1024)), arguments=(), dpi=96):
        self.folder = folder
        self.log = os.path.join(folder, "Xorg.log")
        self.xauthority = os.path.join(folder, "Xauthority")
        self.display = None
        self._arguments = list(arguments)
        self._monitors = monitors
        self._dpi = dpi
        self._modes = set()

    def start(self):
        config = os.path.join(self.folder, "xorg.conf")
        with open(config, "w", encoding="utf-8") as file:
            file.write(CONFIG)
        cookie = secrets.token_bytes(16)
        _write_xauthority(self.xauthority, cookie, None)
        reading, writing = os.pipe()
        try:
            with open(os.path.join(self.folder, "Xorg.out"), "wb") as out:
                self._process = subprocess.Popen(
                    [XORG, "-config", config, "-displayfd", str(writing), "-logfile", self.log, "-auth",
                     self.xauthority, "-seat", "seat-dormel", "-noreset", "-nolisten", "tcp", "-dpi", str(self._dpi),
                     *self._arguments],
                    pass_fds=[writing], stdin=subprocess.DEVNULL, stdout=out, stderr=out, start_new_session=True)
            os.close(writing)
            writing = None
            number = _read_line(reading, 20.0, self._process)
        finally:
            os.close(reading)
            if writing is not None:
                os.close(writing)
        self.display = f":{number}"
        _write_xauthority(self.xauthority, cookie, number)
        self._use_common_keymap()
        for index, (width, height) in enumerate(self._monitors):
            self.plug(index, width, height)
        return self

    def open(self):
        """A connection of one's own. Connections are not shared between threads."""
        before = os.environ.get("XAUTHORITY")
        os.environ["XAUTHORITY"] = self.xauthority
        # python-xlib keeps one table of event codes for all connections, but servers number extensions differently.
        codes = xprotocol.Display.event_classes = xevent.event_class.copy()
        try:
            connection = xdisplay.Display(self.display)
            connection.display.event_classes = codes
            return connection
        finally:
            if before is None:
                del os.environ["XAUTHORITY"]
            else:
                os.environ["XAUTHORITY"] = before

    def environment(self):
        return {"DISPLAY": self.display, "XAUTHORITY": self.xauthority, "XDG_SESSION_TYPE": "x11"}

    def set_resources(self, text):
        """The user's settings that every client finds on the root window."""
        with contextlib.closing(self.open()) as connection:
            connection.screen().root.change_property(Xatom.RESOURCE_MANAGER, Xatom.STRING, 8, text.encode())
            connection.sync()

    def _use_common_keymap(self):
        """Keys are numbered as they are where a real keyboard is plugged in. Without one the server takes those beyond
        the letters by the numbers of another age, by which Up is Print.
        """
        subprocess.run(["setxkbmap", "-rules", "evdev", "-model", "pc105", "-layout", "us"], check=True, timeout=20,
                       env={**os.environ, **self.environment()}, capture_output=True)

    # Monitors. The output's name is DUMMY<index>.

    def plug(self, index, width, height, right_of=None, at=None):
        """Connects a monitor and lights it: at the given place, right of another, or right of everything."""
        mode = self._mode(width, height)
        self._xrandr("--addmode", f"DUMMY{index}", mode)
        place = []
        if at is not None:
            place = ["--pos", f"{at[0]}x{at[1]}"]
        elif right_of is not None:
            place = ["--right-of", f"DUMMY{right_of}"]
        elif index > 0:
            place = ["--pos", "{}x{}".format(*self.free_place())]
        self._xrandr("--output", f"DUMMY{index}", "--mode", mode, *place, *(["--primary"] if index == 0 else []))

    def pull(self, index):
        self._xrandr("--output", f"DUMMY{index}", "--off")

    def resize(self, index, width, height):
        mode = self._mode(width, height)
        self._xrandr("--addmode", f"DUMMY{index}", mode)
        self._xrandr("--output", f"DUMMY{index}", "--mode", mode)

    def configure(self, index, at):
        """One raw request, as a program sends it that is not xrandr: nothing beside it is changed, and nobody holds the
        server meanwhile. Puts what the monitor shows at (x, y); turns it off where that is None."""
        with contextlib.closing(self.open()) as connection:
            resources = connection.screen().root.xrandr_get_screen_resources_current()
            stamp = resources.config_timestamp
            output = next(o for o in resources.outputs
                          if connection.xrandr_get_output_info(o, stamp).name == f"DUMMY{index}")
            crtc = connection.xrandr_get_output_info(output, stamp).crtc
            shown = connection.xrandr_get_crtc_info(crtc, stamp)
            (x, y), mode, outputs = (at, shown.mode, [output]) if at is not None else ((0, 0), 0, [])
            done = connection.xrandr_set_crtc_config(crtc, stamp, x, y, mode, shown.rotation, outputs)
            if done.status != 0:
                raise RuntimeError(f"DUMMY{index} at {at}: status {done.status}")

    def rotate(self, index):
        """Stands the monitor on its side, or lays it back.

        The dummy driver cannot turn a picture, so this sets a mode with the sides exchanged. Clients see what they
        see when a real monitor is turned: the same output, the same corner, width and height exchanged.
        """
        with contextlib.closing(self.open()) as connection:
            monitor = next(m for m in connection.screen().root.xrandr_get_monitors().monitors
                           if connection.get_atom_name(m.name) == f"DUMMY{index}")
        self.resize(index, monitor.height_in_pixels, monitor.width_in_pixels)

    def free_place(self):
        """Right of everything."""
        with contextlib.closing(self.open()) as connection:
            return max((m.x + m.width_in_pixels for m in connection.screen().root.xrandr_get_monitors().monitors),
                       default=0), 0

    def _mode(self, width, height):
        name = f"{width}x{height}_dormel"
        if name not in self._modes:
            # Blanking does not matter on a screen that nobody sees; the numbers only have to be legal.
            h = [width, width + 48, width + 80, width + 160]
            v = [height, height + 3, height + 8, height + 30]
            clock = h[3] * v[3] * 60 / 1e6
            self._xrandr("--newmode", name, f"{clock:.2f}", *map(str, h + v))
            self._modes.add(name)
        return name

    def probe(self):
        """Lets the server look for monitors, as it does when something is plugged in: toolkits that counted them while
        it was starting count again."""
        self._xrandr()

    def _xrandr(self, *arguments):
        environment = {**os.environ, **self.environment()}
        done = subprocess.run(["xrandr", *arguments], env=environment, capture_output=True, text=True, timeout=20,
                              check=False)
        if done.returncode != 0:
            raise RuntimeError(f"xrandr {' '.join(arguments)}: {done.stderr.strip()}")

    # The end.

    def kill(self):
        """As when the server crashes."""
        self._process.kill()
        self._process.wait()

    def stop(self):
        """Asks it to end, as a session does that is over; one that does not is killed after ten seconds."""
        if self._process is not None:
            processes.end(self._process, 10)


class ServerClient:
    """Base of those who have a connection of their own; use each from one thread."""

    def __init__(self, server):
        self._display = server.open()
        self._root = self._display.screen().root

    def close(self):
        with contextlib.suppress(Exception):  # the server may have gone first
            self._display.close()


def _read_line(fd, within, process):
    text = b""
    deadline = time.monotonic() + within
    while not text.endswith(b"\n"):
        if not select.select([fd], [], [], max(0.0, deadline - time.monotonic()))[0]:
            raise NotSeen(f"the X server did not come up within {within:g} s")
        chunk = os.read(fd, 64)
        if not chunk:
            raise NotSeen(f"the X server ended at its start, status {process.wait()}")
        text += chunk
    return int(text)


def _write_xauthority(path, cookie, number):
    """The server needs only the cookie; clients look their entry up by host and display."""
    def entry(family, address, display):
        fields = [address, display, b"MIT-MAGIC-COOKIE-1", cookie]
        return struct.pack(">H", family) + b"".join(struct.pack(">H", len(f)) + f for f in fields)

    family_local, family_wild = 256, 65535
    text = str(number).encode() if number is not None else b""
    blob = entry(family_local, socket.gethostname().encode(), text) + entry(family_wild, b"", text)
    with open(os.open(path, os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o600), "wb") as file:
        file.write(blob)
