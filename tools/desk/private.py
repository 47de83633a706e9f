"""What every private desktop has, whatever displays it: a folder, a home, perhaps a user manager, one way to end."""

import os
import shutil
import signal
import tempfile
import time

from . import processes, scheduler
from .home import Home
from .wait import NotSeen, until


class PrivateDesk:
    """Base of the desks. They put up `server`, `keyboard` and `witness` in _put_up(), and take them down in close().

    manager: True starts a private user manager and falls back to none where it cannot run (manager_missing tells
    why); False never does, which leaves the program to its built-in supervisor.
    """

    def __init__(self, manager=False, extra=None):
        self.folder = tempfile.mkdtemp(prefix="dormel-")
        self.home = Home(self.folder)
        self.manager = self.manager_missing = None
        self._want_manager = manager
        self._extra = dict(extra or {})
        self._open = []

    def __enter__(self):
        try:
            self._put_up()
        except BaseException:
            self.close()
            raise
        return self

    def __exit__(self, *_):
        self.close()

    def _keep(self, thing):
        self._open.append(thing)
        return thing

    def _close_all(self):
        for thing in reversed(self._open):
            thing.close()
        self._open = []

    def _start_manager(self):
        if not self._want_manager:
            return
        manager = scheduler.UserManager(self.home, self.folder, self._extra)
        try:
            self.manager = manager.start()
        except NotSeen as missing:
            self.manager_missing = str(missing)

    def _stop_manager(self):
        if self.manager is not None:
            self.manager.stop()

    def environment(self):
        """What a program started in this session finds."""
        environment = {**self.home.environment(), **self.server.environment(), **self._extra}
        if self.manager is None:
            environment.pop("DBUS_SESSION_BUS_ADDRESS")
        return environment

    def keys_reach_the_document(self, key=67):
        """Taps F9 and says whether the document heard it. Costs one server round trip after the witness's own."""
        mark = self.witness.mark()
        self.keyboard.tap(key)
        try:
            until("a key", lambda: any(k[2] == key for k in self.witness.heard(mark)), 0.3)
            return True
        except NotSeen:
            return False

    def _sweep(self):
        """Ends what still lives in the private home: a supervisor, a job it restarted, a bus that was started."""
        deadline = time.monotonic() + 5
        while time.monotonic() < deadline:
            left = processes.of_home(self.home.path)
            left.pop(os.getpid(), None)
            if not left:
                return
            for pid in left:
                try:
                    os.kill(pid, signal.SIGKILL)
                except ProcessLookupError:
                    pass
            time.sleep(0.05)

    def _remove_folder(self):
        if os.environ.get("DORMEL_KEEP") != "1":
            shutil.rmtree(self.folder, ignore_errors=True)
