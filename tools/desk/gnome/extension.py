"""The shell's extension, installed into a home as the program does it, and a stand-in for the program that talks to it."""

import fcntl
import json
import os
import shutil
import socket
import struct
import threading
import time

from ..home import IDENTIFIER
from ..wait import until

UUID = f"dormel@{IDENTIFIER}"
SOURCE = os.path.join(os.path.dirname(os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))),
                      "platform", "linux", "gnome", "extension")


def install(desk, programs=None):
    """Into the home of a desk whose shell has not started yet. programs: executables that may talk to it (this one)."""
    target = os.path.join(desk.home.path, ".local", "share", "gnome-shell", "extensions", UUID)
    shutil.copytree(SOURCE, target, ignore=shutil.ignore_patterns("*.in"))
    with open(os.path.join(SOURCE, "metadata.json.in"), encoding="utf-8") as file:
        text = file.read()
    for name, value in (("DORMEL_EXTENSION_UUID", UUID), ("DORMEL_BUILD_NUMBER", "7"),
                        ("BUNDLE_IDENTIFIER", IDENTIFIER)):
        text = text.replace(f"@{name}@", value)
    with open(os.path.join(target, "metadata.json"), "w", encoding="utf-8") as file:
        file.write(text)
    state = os.path.join(desk.home.path, ".local", "state")
    os.makedirs(state, exist_ok=True)
    with open(os.path.join(state, f"{IDENTIFIER}.gnome.programs"), "w", encoding="utf-8") as file:
        file.write("\n".join(programs or [os.readlink("/proc/self/exe")]) + "\n")
    desk.server.extensions = [UUID]


def kept(desk):
    """What the extension keeps on the disk; None without."""
    try:
        with open(os.path.join(desk.home.path, ".local", "state", f"{IDENTIFIER}.gnome.json"), encoding="utf-8") as file:
            return json.load(file)
    except FileNotFoundError:
        return None


def socket_path(desk):
    return os.path.join(desk.home.runtime, f"{IDENTIFIER}.gnome")


class Program:
    """A connected program. `keys` are the (code, down) that came, `said` all messages by their kind."""

    def __init__(self, desk, within=15):
        self.said = {}
        self.keys = []
        self.ended = False
        self._lock = threading.Lock()
        self._socket = until("the extension listens", lambda: self._connect(socket_path(desk)), within, 0.02)
        self._thread = threading.Thread(target=self._listen, name="program", daemon=True)
        self._thread.start()

    @staticmethod
    def _connect(path):
        caller = socket.socket(socket.AF_UNIX)
        if caller.connect_ex(path) == 0:
            return caller
        caller.close()
        return None

    def say(self, kind, descriptor=None, **body):
        self.say_text(json.dumps({kind: body}).encode(), descriptor)

    def say_text(self, text, descriptor=None):
        self._socket.sendall(struct.pack("<I", len(text)) + text)
        if descriptor is not None:
            socket.send_fds(self._socket, [b"."], [descriptor])

    def _take(self, count):
        data = b""
        while len(data) < count:
            part = self._socket.recv(count - len(data))
            if not part:
                raise EOFError
            data += part
        return data

    def _listen(self):
        try:
            while True:
                message = json.loads(self._take(*struct.unpack("<I", self._take(4))))
                (kind, body), = message.items()
                with self._lock:
                    self.said.setdefault(kind, []).append(body)
                    if kind == "key":
                        self.keys.append((body["code"], body["down"]))
        except (EOFError, OSError):
            self.ended = True

    def last(self, kind):
        with self._lock:
            return self.said.get(kind, [None])[-1]

    def wait_for(self, kind, test=lambda body: True, within=5):
        return until(f"the extension says {kind}",
                     lambda: next((b for b in self.said.get(kind, []) if test(b)), None), within)

    def hello(self):
        self.say("hello", protocol=1)
        return self.wait_for("hello")

    def hold(self, cover=True, keys=True, until=None, absence=120, words=("Hold A S D F G", "until 06:00")):
        """until: seconds from now (an hour)."""
        end = time.time() + (3600 if until is None else until)
        self.say("hold", cover=cover, keys=keys, until=end if absence else None, absence=absence, words=list(words))

    def lock(self, **options):
        """Holds, and waits until it does."""
        self.hold(**options)
        self.wait_for("held", lambda held: held["cover"] and held["keys"])
        return self

    def panel(self, number, at, black=True, level=2, alpha=1, fade=0, pointer=False):
        self.say("panel", id=number, at=at, black=black, level=level, alpha=alpha, fade=fade, curve=3, pointer=pointer)

    def pool(self, number, data, sealed=True):
        """A pool with these bytes; its descriptor, for whoever wants to spoil it."""
        memory = os.memfd_create("frames", os.MFD_ALLOW_SEALING)
        os.write(memory, data)
        if sealed:
            fcntl.fcntl(memory, fcntl.F_ADD_SEALS, fcntl.F_SEAL_SHRINK | fcntl.F_SEAL_GROW)
        self.say("pool", descriptor=memory, id=number)
        return memory

    def frame(self, serial, pool, size, at, panels, offset=0, within=5):
        """Shows a frame and answers whether the extension did."""
        width, height = size
        self.say("frame", serial=serial, pool=pool, offset=offset, width=width, height=height, stride=width * 4,
                 panels=panels, at=at)
        return self.wait_for("frame", lambda body: body["serial"] == serial, within)["shown"]

    def vanish(self):
        """As when it is killed: nothing is said any more."""
        self._socket.shutdown(socket.SHUT_RDWR)
        self._socket.close()
        self._thread.join(2)
