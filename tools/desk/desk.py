"""The whole private desktop, put up and taken down as one."""

import contextlib
import os
import shlex
import subprocess

from . import buses, paint, processes
from .clients import Clients
from .eyes import Eyes
from .keyboard import Keyboard
from .mouse import Mouse
from .neighbours import Neighbour
from .private import PrivateDesk
from .server import Server
from .wait import NotSeen, until
from .watcher import Watcher
from .witness import Witness


class Desk(PrivateDesk):
    """Monitors, a home, somebody working in a document, and hands and eyes for the one who plays.

    with Desk() as desk: ...

    manager: as for every PrivateDesk.
    windows: "openbox" adds a window manager; compositor: True adds picom. scale: what the user set for large monitors.
    DORMEL_WINDOWS, a command, is the window manager of every desk instead, and its compositor if it is one.
    """

    def __init__(self, monitors=((1920, 1080), (1280, 1024)), manager=False, windows=None, compositor=False,
                 server_arguments=(), pretty=False, extra=None, scale=None):
        super().__init__(manager, extra)
        self.server = Server(self.folder, monitors, server_arguments)
        windows = os.environ.get("DORMEL_WINDOWS", windows)
        self._windows = shlex.split(windows) if windows else None
        self._compositor, self._pretty = compositor, pretty
        self._scale = scale
        self._helpers = []
        self._neighbours = []

    def _put_up(self):
        self.server.start()
        self.eyes = self._keep(Eyes(self.server))
        self.keyboard = self._keep(Keyboard(self.server))
        self.mouse = self._keep(Mouse(self.server))
        self.clients = self._keep(Clients(self.server))
        if self._scale is not None:
            self.server.set_resources(f"Xft.dpi:\t{96 * self._scale:.0f}\n")
        monitors = self.eyes.monitors()
        paint.wallpaper(self.server, monitors if self._pretty else [])
        if self._windows:
            if "DORMEL_WINDOWS" in os.environ and not self._want_manager:
                self.start_bus()
            self.helper(self._windows, "_NET_SUPPORTING_WM_CHECK")
            if "DORMEL_WINDOWS" in os.environ:
                self.server.probe()
                with contextlib.suppress(NotSeen):
                    until("it composites", self.composited, 2)
                    self._keep(paint.DesktopWindow(self.server))
        if self._compositor and not self.composited():
            self.start_compositor()
        self.witness = self._keep(Witness(self.server, picture=paint.document(900, 620) if self._pretty else None))
        # openbox does not look at what reached it while it was starting until something else does.
        until("the document has the keyboard focus",
              lambda: self.clients.nudge_manager() or self.witness.focused.is_set(), 5)
        self.watcher = self._keep(Watcher(self.server))
        self._start_manager()

    def helper(self, command, ready_property=None):
        """Starts a program of the session; with ready_property waits until the root window carries it."""
        with open(os.path.join(self.folder, os.path.basename(command[0]) + ".out"), "wb") as out:
            process = subprocess.Popen(command, env=self.environment(), stdin=subprocess.DEVNULL, stdout=out,
                                       stderr=out, start_new_session=True)
        self._helpers.append(process)
        if ready_property:
            with contextlib.closing(self.server.open()) as connection:
                root, atom = connection.screen().root, connection.intern_atom(ready_property)
                until(f"{command[0]} is ready", lambda: root.get_full_property(atom, 0) is not None, 10)
        return process

    def start_bus(self, name="bus"):
        """A session bus; its address. By the usual name it stands where a user manager has its own."""
        path = os.path.join(self.home.runtime, name)
        self.helper(["dbus-daemon", "--session", "--nofork", "--nopidfile", f"--address=unix:path={path}"])
        until("the session bus is there", lambda: buses.listens(path), 5)
        return f"unix:path={path}"

    def composited(self):
        """Whether somebody composites the screens."""
        with contextlib.closing(self.server.open()) as connection:
            return connection.get_selection_owner(connection.intern_atom("_NET_WM_CM_S0")) != 0

    def start_compositor(self):
        process = self.helper(["picom", "--backend", "xrender", "--config", "/dev/null"])
        until("picom composites", self.composited, 10)
        return process

    def neighbour(self, kind):
        neighbour = Neighbour(self.server, kind)
        self._neighbours.append(neighbour)
        return neighbour

    # Questions that every test asks.

    def lock_covers(self, monitor, pid):
        """Whether a window of the process covers the monitor."""
        return any(w.pid == pid and monitor.contains(*w.rectangle) for w in self.eyes.stack())

    def pill(self, pid):
        """The process's small window in the upper right corner of the main screen, or None."""
        main = self.eyes.primary()
        for window in self.eyes.windows_of(pid):
            if (window.x >= main.x + main.width // 2 and window.y < main.y + main.height // 4
                    and window.width < main.width // 2 and window.height < main.height // 4):
                return window
        return None

    def close(self):
        for neighbour in self._neighbours:
            neighbour.end()
        self._stop_manager()
        self._close_all()
        for process in self._helpers:
            processes.end(process)
        self._sweep()
        self.server.stop()
        self._remove_folder()
