"""The real GNOME Shell with virtual monitors, and the session around it: two private buses, the login services that its
lock screen needs (mocked), and the media server that carries the pictures of monitors plugged later."""

import os
import signal
import subprocess

import dbus
import dbus.bus
import gi

gi.require_version("GdkPixbuf", "2.0")
from dbus.mainloop.glib import DBusGMainLoop  # noqa: E402
from gi.repository import GdkPixbuf, GLib  # noqa: E402

from .. import buses, processes  # noqa: E402
from ..eyes import Monitor, Picture  # noqa: E402
from ..wait import NotSeen, until  # noqa: E402

STARTED = "GNOME Shell started at"
SETTINGS = (("org.gnome.shell", "welcome-dialog-last-shown-version", "'999'"),
            ("org.gnome.desktop.interface", "enable-animations", "false"))


class GnomeShell(processes.Running):
    """monitors: (width, height) of what is there from the start, left to right. environment: of the desk's home.

    Started anew after `kill`, it is what the user finds after the next login: the home is the same."""

    program = "gnome-shell"

    def __init__(self, folder, home, monitors):
        self.folder, self._home, self._monitors = folder, home, list(monitors)
        self._session_bus = os.path.join(home.runtime, "bus")
        self.session_bus = f"unix:path={self._session_bus}"
        self._system_bus = os.path.join(folder, "system-bus")
        self._log = os.path.join(folder, "gnome-shell.out")
        self.extensions = []  # switched on from the start
        self._services = []
        self.bus = None
        self._plugged = {}
        self.path = os.path.join(home.runtime, "wayland-0")

    def environment(self):
        return {**self._home.environment(), "WAYLAND_DISPLAY": self.path, "XDG_SESSION_TYPE": "wayland",
                "XDG_CURRENT_DESKTOP": "GNOME", "XDG_SESSION_ID": "c1", "DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={self._system_bus}", "LIBGL_ALWAYS_SOFTWARE": "1"}

    # Started and ended.

    def start(self):
        os.makedirs("/run/systemd/seats", exist_ok=True)  # by this the shell knows that somebody manages logins
        self._start_bus("session", self._session_bus)
        self._service(["/usr/libexec/dconf-service"])
        self._service(["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"])
        for schema, key, value in (*SETTINGS, ("org.gnome.shell", "enabled-extensions", str(self.extensions))):
            self.set(schema, key, value)
        self._start_bus("system", self._system_bus)
        self._mock_login()
        self._service(["pipewire"])
        until("pipewire is there", lambda: os.path.exists(os.path.join(self._home.runtime, "pipewire-0")), 10)
        self._service(["wireplumber"])
        return self.start_shell()

    def _service(self, command, environment=None):
        with open(os.path.join(self.folder, os.path.basename(command[-1]) + ".out"), "ab") as out:
            process = subprocess.Popen(command, env={**self.environment(), **(environment or {})}, stdout=out, stderr=out,
                                       stdin=subprocess.DEVNULL, start_new_session=True)
        self._services.append(process)
        return process

    def _start_bus(self, kind, path):
        self._service(buses.daemon(kind, path))
        until(f"the {kind} bus is there", lambda: buses.listens(path), 10)

    def _mock_login(self):
        """The login manager with one session in front, and the login screen's service as far as its version."""
        bus = dbus.bus.BusConnection(f"unix:path={self._system_bus}")
        self._service(["/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "logind"])
        until("the login manager is there", lambda: bus.name_has_owner("org.freedesktop.login1"), 15)
        login = dbus.Interface(bus.get_object("org.freedesktop.login1", "/org/freedesktop/login1"),
                               "org.freedesktop.DBus.Mock")
        login.AddSession("c1", "seat0", dbus.UInt32(os.getuid()), "somebody", True)
        name, path = "org.gnome.DisplayManager", "/org/gnome/DisplayManager/Manager"
        self._service(["/usr/bin/python3", "-m", "dbusmock", "--system", name, path, name + ".Manager"])
        until("the login screen's service is there", lambda: bus.name_has_owner(name), 15)
        mock = dbus.Interface(bus.get_object(name, path), "org.freedesktop.DBus.Mock")
        mock.AddProperty(name + ".Manager", "Version", "48.0")
        mock.AddMethod(name + ".Manager", "RegisterSession", "a{sv}", "", "")
        bus.close()

    def start_shell(self):
        """As a login does."""
        # Unsafe mode lets tests do what the user does with the mouse (see `run`).
        command = ["gnome-shell", "--headless", "--unsafe-mode", "--wayland", "--no-x11", "--wayland-display",
                   "wayland-0"]
        for width, height in self._monitors:
            command += ["--virtual-monitor", f"{width}x{height}"]
        began = os.path.getsize(self._log) if os.path.exists(self._log) else 0
        with open(self._log, "ab") as out:
            self._process = subprocess.Popen(command, env=self.environment(), stdout=out, stderr=out,
                                             stdin=subprocess.DEVNULL, cwd=self._home.path, start_new_session=True)
        self.bus = dbus.bus.BusConnection(self.session_bus, mainloop=DBusGMainLoop())
        until("the shell has started", lambda: self._has_started(began), 60, 0.05)
        until("its screenshot service is there", lambda: self.bus.name_has_owner("org.gnome.Shell.Screenshot"), 20, 0.05)
        # Whoever owns this name may take pictures.
        self.bus.request_name("org.gnome.Screenshot")
        return self

    def _has_started(self, began):
        if self._process.poll() is not None:
            raise NotSeen(f"the shell ended at its start, status {self._process.returncode}; see {self._log}")
        return STARTED in self.log(began)

    def log(self, since=0):
        with open(self._log, encoding="utf-8", errors="replace") as file:
            file.seek(since)
            return file.read()

    def memory(self):
        """In MB."""
        with open(f"/proc/{self.pid}/statm", encoding="ascii") as file:
            return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE") / 1e6

    def kill(self):
        """As when it crashes, which ends the session."""
        for name in list(self._plugged):
            self.pull(name)
        self.bus.close()
        if self.alive():
            os.killpg(self._process.pid, signal.SIGKILL)
        self._process.wait()

    def stop(self):
        if self.bus is not None:
            self.kill()
        for process in reversed(self._services):
            process.terminate()
        for process in reversed(self._services):
            processes.end(process)

    # Asked over its bus.

    def call(self, name, path, method, *arguments, **options):
        """method: "interface.Method"."""
        interface, _, method = method.rpartition(".")
        return getattr(dbus.Interface(self.bus.get_object(name, path), interface), method)(*arguments, **options)

    def shell(self, method, *arguments):
        return self.call("org.gnome.Shell", "/org/gnome/Shell", "org.gnome.Shell." + method, *arguments)

    def run(self, script):
        """Runs a line of the shell's own language in it, and answers what it says as text."""
        done, answer = self.shell("Eval", script)
        if not done:
            raise NotSeen(f"the shell could not do {script}: {answer}")
        return str(answer)

    def set(self, schema, key, value):
        self._gsettings("set", schema, key, value)

    def reset(self, schema, key):
        self._gsettings("reset", schema, key)

    def get(self, schema, key):
        return self._gsettings("get", schema, key).strip()

    def _gsettings(self, *arguments):
        return subprocess.run(["gsettings", *arguments], env=self.environment(), check=True, text=True,
                              capture_output=True, timeout=20).stdout

    # The lock screen.

    def lock_screen(self):
        self.call("org.gnome.Shell.ScreenShield", "/org/gnome/ScreenSaver", "org.gnome.ScreenSaver.Lock")
        until("the lock screen is up", self.lock_screen_is_up, 10)

    def lock_screen_is_up(self):
        return bool(self.call("org.gnome.Shell.ScreenShield", "/org/gnome/ScreenSaver", "org.gnome.ScreenSaver.GetActive"))

    def unlock_screen(self):
        """As the login manager does once the password was right."""
        bus = dbus.bus.BusConnection(f"unix:path={self._system_bus}")
        mock = dbus.Interface(bus.get_object("org.freedesktop.login1", "/org/freedesktop/login1/session/c1"),
                              "org.freedesktop.DBus.Mock")
        mock.EmitSignal("org.freedesktop.login1.Session", "Unlock", "", dbus.Array([], signature="v"))
        bus.close()
        until("the lock screen is gone", lambda: not self.lock_screen_is_up(), 10)

    # Monitors and pictures of them.

    def monitors(self):
        state = self.call("org.gnome.Mutter.DisplayConfig", "/org/gnome/Mutter/DisplayConfig",
                          "org.gnome.Mutter.DisplayConfig.GetCurrentState")
        sizes = {}
        for (connector, *_), modes, _ in state[1]:
            for mode in modes:
                if mode[6].get("is-current"):
                    sizes[str(connector)] = int(mode[1]), int(mode[2])
        found = []
        for x, y, scale, _, primary, physical, _ in state[2]:
            width, height = sizes[str(physical[0][0])]
            found.append(Monitor(str(physical[0][0]), int(x), int(y), round(width / scale), round(height / scale),
                                 bool(primary)))
        return sorted(found, key=lambda m: m.x)

    def plug(self, width, height):
        """One more monitor, to the right of the others. Its name."""
        before = {m.name for m in self.monitors()}
        cast = "org.gnome.Mutter.ScreenCast"
        session = self.call(cast, "/org/gnome/Mutter/ScreenCast", cast + ".CreateSession",
                            dbus.Dictionary({"disable-animations": False}, signature="sv"))
        stream = self.call(cast, session, cast + ".Session.RecordVirtual", dbus.Dictionary({}, signature="sv"))
        node = []
        watch = self.bus.add_signal_receiver(lambda number: node.append(int(number)), "PipeWireStreamAdded",
                                             cast + ".Stream", path=stream)
        self.call(cast, session, cast + ".Session.Start")
        context = GLib.MainContext.default()
        until("a node of the new monitor", lambda: (context.iteration(False), node)[1], 10)
        watch.remove()
        consumer = self._service(["gst-launch-1.0", "-q", "pipewiresrc", f"path={node[0]}", "!",
                                  f"video/x-raw,width={width},height={height},max-framerate=30/1", "!", "fakesink"])
        name = until("a new monitor", lambda: next((m.name for m in self.monitors() if m.name not in before), None), 10)
        self._plugged[name] = session, consumer
        return name

    def pull(self, name):
        session, consumer = self._plugged.pop(name)
        consumer.terminate()
        consumer.wait()
        self._services.remove(consumer)
        try:
            self.call("org.gnome.Mutter.ScreenCast", session, "org.gnome.Mutter.ScreenCast.Session.Stop")
        except dbus.DBusException:
            pass  # it ended with its last consumer

    def picture(self, monitor):
        return self.rectangle(monitor.x, monitor.y, monitor.width, monitor.height)

    def rectangle(self, x, y, width, height):
        path = os.path.join(self.folder, "shot.png")
        done, used = self.call("org.gnome.Shell.Screenshot", "/org/gnome/Shell/Screenshot",
                               "org.gnome.Shell.Screenshot.ScreenshotArea", x, y, width, height, False, path)
        if not done:
            raise NotSeen("the shell took no picture")
        pixels = GdkPixbuf.Pixbuf.new_from_file(str(used))
        size = pixels.get_width(), pixels.get_height()
        step, stride, data = pixels.get_n_channels(), pixels.get_rowstride(), pixels.get_pixels()
        lines = b"".join(data[row * stride:row * stride + size[0] * step] for row in range(size[1]))
        out = bytearray(size[0] * size[1] * 4)
        for target, source in ((2, 0), (1, 1), (0, 2)):
            out[target::4] = lines[source::step]
        return Picture(*size, bytes(out))
