"""Headless compositors: started, asked for pictures, their monitors plugged and pulled.

None of them runs as root, so a root that plays on one gives it a user of its own; its socket is named by its path.
"""

import contextlib
import json
import os
import shutil
import signal
import socket
import subprocess

from .. import buses, processes
from ..eyes import Monitor, Picture
from ..wait import NotSeen, until

NOBODY = 65534


def make(name, folder, monitors):
    return {"sway": Sway, "labwc": Labwc, "kwin": KWin}[name](folder, monitors)


class Compositor(processes.Running):
    """monitors: (width, height) of what is there from the start, left to right."""

    program = None

    def __init__(self, folder, monitors):
        self._monitors = list(monitors)
        self.folder = os.path.join(folder, "compositor")
        self.runtime = os.path.join(self.folder, "run")
        os.makedirs(self.runtime, mode=0o700)
        self._log = os.path.join(folder, "compositor.out")
        self.path = None  # of its socket

    def environment(self):
        return {"WAYLAND_DISPLAY": self.path, "XDG_SESSION_TYPE": "wayland", "XDG_CURRENT_DESKTOP": self.program}

    def _own_environment(self):
        return {"PATH": os.environ["PATH"], "HOME": self.folder, "XDG_RUNTIME_DIR": self.runtime, "LANG": "C.UTF-8"}

    def _hand_over(self):
        """Everything in the folder belongs to whom the compositor runs as."""
        if os.geteuid() != 0:
            return
        for at, folders, files in os.walk(self.folder):
            for name in [at, *(os.path.join(at, n) for n in folders + files)]:
                os.chown(name, NOBODY, NOBODY)
        os.chmod(os.path.dirname(self.folder), 0o711)

    def _run_as(self):
        return {"user": NOBODY, "group": NOBODY, "extra_groups": []} if os.geteuid() == 0 else {}

    def _spawn(self, command, environment):
        self._hand_over()
        with open(self._log, "ab") as out:
            return subprocess.Popen(command, env={**self._own_environment(), **environment}, cwd=self.folder,
                                    stdin=subprocess.DEVNULL, stdout=out, stderr=out, start_new_session=True,
                                    **self._run_as())

    def _ask(self, command, environment=None, within=20):
        done = subprocess.run(command, env={**self._own_environment(), **(environment or {})}, capture_output=True,
                              timeout=within, check=False, **self._run_as())
        if done.returncode != 0:
            raise RuntimeError(f"{' '.join(command)}: {(done.stderr or done.stdout).decode().strip()}")
        return done.stdout

    def trusted(self):
        """A connected socket of a process that the compositor may look at, as it does before it lets anybody type for
        others; and that process, which is to live as long."""
        ours, theirs = socket.socketpair()
        script = ("import socket, sys\n"
                  "back, out = socket.socket(fileno=0), socket.socket(socket.AF_UNIX)\n"
                  "out.connect(sys.argv[1])\n"
                  "socket.send_fds(back, [b'.'], [out.fileno()])\n"
                  "back.recv(1)\n")
        process = subprocess.Popen(["/usr/bin/python3", "-c", script, self.path], stdin=theirs, **self._run_as())
        theirs.close()
        ours.settimeout(10)
        fds = socket.recv_fds(ours, 1, 1)[1]
        return socket.socket(fileno=fds[0]), ours, process

    def _listens(self):
        if self._process.poll() is not None:
            raise NotSeen(f"{self.program} ended at its start, status {self._process.returncode}; see {self._log}")
        for name in sorted(os.listdir(self.runtime)):
            path = os.path.join(self.runtime, name)
            if name.startswith("wayland-") and not name.endswith(".lock"):
                if buses.listens(path):
                    return path
        return None

    def start(self):
        if shutil.which(self.program) is None and shutil.which(self.program + "_wayland") is None:
            raise NotSeen(f"{self.program} is not installed")
        self._process = self._start()
        self.path = until(f"{self.program} listens", self._listens, 20)
        return self

    def pulls(self):
        """Whether its monitors can be pulled."""
        return True

    def kill(self):
        """As when it crashes."""
        if self.alive():
            os.killpg(self._process.pid, signal.SIGKILL)
        self._process.wait()

    def stop(self):
        if not self.alive():
            return
        processes.end(self._process)
        try:
            os.killpg(self._process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        self._process.wait()

    def picture(self, monitor):
        """What the monitor shows now, in its own pixels."""
        data = self._ask(["grim", "-t", "ppm", "-o", monitor.name, "-"], {"WAYLAND_DISPLAY": self.path})
        kind, size, depth, pixels = data.split(b"\n", 3)
        if kind != b"P6" or depth != b"255":
            raise RuntimeError(f"grim answered with {kind!r} {depth!r}")
        return _picture(*map(int, size.split()), pixels, 3, (0, 1, 2))


def _picture(width, height, data, step, order):
    """A Picture from pixels of `step` bytes that have red, green and blue at the places `order`."""
    out = bytearray(width * height * 4)
    for target, source in zip((2, 1, 0), order):
        out[target::4] = data[source:width * height * step:step]
    return Picture(width, height, bytes(out))


class Sway(Compositor):
    program = "sway"
    keys = "virtual-keyboard"
    more = ""  # lines of its configuration

    def _start(self):
        with open(os.path.join(self.folder, "config"), "w", encoding="utf-8") as file:
            file.write("default_border none\nfocus_follows_mouse no\nbindsym Mod1+Tab workspace next\n"
                       "bindsym Mod4+d exec true\nworkspace 1 output HEADLESS-1\nworkspace 2 output HEADLESS-2\n")
            x = 0
            for number, (width, height) in enumerate(self._monitors, 1):
                file.write(f"output HEADLESS-{number} mode {width}x{height} pos {x} 0\n")
                x += width
            file.write(self.more)
        return self._spawn(["sway", "-c", os.path.join(self.folder, "config")], {
            "WLR_BACKENDS": "headless", "WLR_RENDERER": "pixman", "WLR_LIBINPUT_NO_DEVICES": "1",
            "WLR_HEADLESS_OUTPUTS": str(len(self._monitors))})

    def message(self, *arguments):
        ipc = next(n for n in os.listdir(self.runtime) if n.startswith("sway-ipc"))
        return self._ask(["swaymsg", "-s", os.path.join(self.runtime, ipc), *arguments])

    def monitors(self):
        found = [o for o in json.loads(self.message("-t", "get_outputs")) if o["active"]]
        return [Monitor(o["name"], o["rect"]["x"], o["rect"]["y"], o["rect"]["width"], o["rect"]["height"],
                        o["rect"]["x"] == 0) for o in sorted(found, key=lambda o: o["rect"]["x"])]

    def plug(self, width, height):
        before = {m.name for m in self.monitors()}
        self.message("create_output")
        name = until("a new output", lambda: next((m.name for m in self.monitors() if m.name not in before), None), 5)
        self.message("output", name, "mode", f"{width}x{height}")
        return name

    def pulls(self):
        """Before 1.8, sway says yes to `disable`, but a monitor that is none stays on."""
        version = json.loads(self.message("-t", "get_version"))
        return (version["major"], version["minor"]) >= (1, 8)

    def pull(self, name):
        self.message("output", name, "unplug")

    def scale(self, name, factor):
        self.message("output", name, "scale", str(factor))


class Labwc(Compositor):
    program = "labwc"
    keys = "virtual-keyboard"

    def _start(self):
        return self._spawn(["labwc"], {
            "WLR_BACKENDS": "headless", "WLR_RENDERER": "pixman", "WLR_LIBINPUT_NO_DEVICES": "1",
            "WLR_HEADLESS_OUTPUTS": str(len(self._monitors)), "XDG_CONFIG_HOME": self.folder})

    def start(self):
        super().start()
        x = 0
        for number, (width, height) in enumerate(self._monitors, 1):
            self._randr("--output", f"HEADLESS-{number}", "--custom-mode", f"{width}x{height}", "--pos", f"{x},0")
            x += width
        return self

    def _randr(self, *arguments):
        return self._ask(["wlr-randr", *arguments], {"WAYLAND_DISPLAY": self.path})

    def monitors(self):
        found = []
        for output in json.loads(self._randr("--json")):
            mode = next((m for m in output["modes"] if m["current"]), None)
            if output["enabled"] and mode:
                at = output["position"]
                found.append(Monitor(output["name"], at["x"], at["y"], round(mode["width"] / output["scale"]),
                                     round(mode["height"] / output["scale"]), at["x"] == 0))
        return sorted(found, key=lambda m: m.x)

    def pull(self, name):
        self._randr("--output", name, "--off")

    def plug(self, width, height):
        gone = next(o["name"] for o in json.loads(self._randr("--json")) if not o["enabled"])
        # Where nobody says where it is to stand, it comes back over the first one.
        x = max((m.x + m.width for m in self.monitors()), default=0)
        self._randr("--output", gone, "--on", "--custom-mode", f"{width}x{height}", "--pos", f"{x},0")
        return gone

    def scale(self, name, factor):
        self._randr("--output", name, "--scale", str(factor))


class Outside(Sway):
    """The desktop around a nested compositor, whose outputs are windows there, each over a whole monitor of its own."""

    more = "".join(f'for_window [title="WL-{n - 1} "] move container to output HEADLESS-{n}, fullscreen enable\n'
                   for n in (1, 2))


class KWin(Compositor):
    """From version 6 on it lends its screens' pixels only where a graphics driver draws them, so there it is nested in
    a sway, which has the same pixels and tells them."""

    program = "kwin"
    keys = "fake-input"

    def __init__(self, folder, monitors):
        super().__init__(folder, monitors)
        self._outside = self._helper = None

    def _start(self):
        # Where file capabilities cannot be had, the installed program cannot be started; a copy has none. It looks at
        # its own name.
        program = os.path.join(self.folder, "kwin_wayland")
        shutil.copy(shutil.which("kwin_wayland"), program)
        os.chmod(program, 0o755)
        self._bus = f"unix:path={self.runtime}/bus"
        width, height = self._monitors[0]
        where, place = ["--virtual"], {}
        version = subprocess.run([program, "--version"], capture_output=True, text=True, check=False).stdout
        if int(version.partition(" ")[2].partition(".")[0] or 0) >= 6:
            self._hand_over()
            self._outside = Outside(os.path.join(os.path.dirname(self.folder), "outside"), self._monitors).start()
            where, place = ["--wayland-display", self._outside.path], {"WAYLAND_DISPLAY": self._outside.path}
        self._helper = self._spawn(["dbus-daemon", "--session", "--nofork", "--nopidfile", f"--address={self._bus}"],
                                   {})
        until("the compositor's session bus is there", lambda: os.path.exists(self.runtime + "/bus"), 5)
        return self._spawn([program, *where, "--output-count", str(len(self._monitors)), "--width", str(width),
                            "--height", str(height), "--no-lockscreen", "--socket", "wayland-0"], {
                                **place, "DBUS_SESSION_BUS_ADDRESS": self._bus, "KWIN_WAYLAND_NO_PERMISSION_CHECKS": "1",
                                "KWIN_SCREENSHOT_NO_PERMISSION_CHECKS": "1"})

    def stop(self):
        super().stop()
        if self._helper is not None:
            self._helper.terminate()
            self._helper.wait()
        if self._outside is not None:
            self._outside.stop()

    def monitors(self):
        from .wire import Connection  # the protocol files may be missing where nobody asks for a desk without X
        with contextlib.closing(Connection(self.path)) as connection:
            found = []
            manager = connection.bind("zxdg_output_manager_v1", 3)
            for number in connection.names("wl_output"):
                seen = {}
                output = connection.bind("wl_output", 2, number)
                logical = manager.get_xdg_output(output)
                for event in ("name", "logical_position", "logical_size"):
                    logical.on[event] = lambda *values, event=event, seen=seen: seen.__setitem__(event, values)
                connection.roundtrip()
                (x, y), (width, height) = seen["logical_position"], seen["logical_size"]
                found.append(Monitor(seen["name"][0], x, y, width, height, x == 0))
            return sorted(found, key=lambda m: m.x)

    def picture(self, monitor):
        """By the compositor's own service, which hands the pixels over in a pipe; or from outside."""
        if self._outside is not None:
            names = [m.name for m in self.monitors()]  # by name: it may have moved since it was asked about
            return self._outside.picture(self._outside.monitors()[names.index(monitor.name)])
        script = ("import dbus, os, sys, threading\n"
                  "read, write = os.pipe()\n"
                  "out = []\n"
                  "def take():\n"
                  "    while data := os.read(read, 1 << 20): out.append(data)\n"
                  "thread = threading.Thread(target=take); thread.start()\n"
                  "shots = dbus.SessionBus().get_object('org.kde.KWin', '/org/kde/KWin/ScreenShot2')\n"
                  "told = shots.CaptureScreen(sys.argv[1], {'native-resolution': True}, dbus.types.UnixFd(write),"
                  " dbus_interface='org.kde.KWin.ScreenShot2')\n"
                  "os.close(write); thread.join()\n"
                  "sys.stdout.buffer.write(b'%d %d %d\\n' % (told['width'], told['height'], told['stride']))\n"
                  "sys.stdout.buffer.write(b''.join(out))\n")
        data = self._ask(["/usr/bin/python3", "-c", script, monitor.name], {"DBUS_SESSION_BUS_ADDRESS": self._bus})
        size, _, pixels = data.partition(b"\n")
        width, height, stride = map(int, size.split())
        if stride != width * 4:
            pixels = b"".join(pixels[y * stride:y * stride + width * 4] for y in range(height))
        return _picture(width, height, pixels, 4, (2, 1, 0))
