"""A user's service manager of its own, for a home folder of its own.

The manager started here has nothing in common with the one of the person who runs the tests: not the home folder,
not the runtime folder, not the bus. Where the control groups can be written it also has a group of its own, so that
two of them on one machine cannot end each other's processes.
"""

import os
import pathlib
import signal
import subprocess
import time

PROGRAM = "/lib/systemd/systemd"


class Unavailable(Exception):
    """A user manager cannot run on this machine; the text says why."""


class UserManager:
    def __init__(self, environment):
        """`environment`: the whole of it, with HOME and XDG_RUNTIME_DIR (an existing folder, mode 0700)."""
        self._environment = dict(environment)
        self._environment.pop("DBUS_SESSION_BUS_ADDRESS", None)
        self._groups = []
        self._log = pathlib.Path(environment["XDG_RUNTIME_DIR"]) / "manager.log"
        if not os.path.exists(PROGRAM):
            raise Unavailable("systemd is not installed")
        if not os.path.isdir("/run/systemd/system"):
            try:
                # What tells programs that this machine runs on systemd; the manager refuses to start without.
                os.makedirs("/run/systemd/system")
            except OSError as error:
                raise Unavailable(f"/run/systemd/system is missing: {error}") from error
        self._make_groups()
        with open(self._log, "wb") as log:
            self.process = subprocess.Popen([PROGRAM, "--user", "--log-target=console"], env=self._environment,
                                            stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                            preexec_fn=self._enter_groups)
        self._wait_until_ready()

    def _make_groups(self):
        for root in ("/sys/fs/cgroup", "/sys/fs/cgroup/systemd", "/sys/fs/cgroup/unified"):
            group = pathlib.Path(root) / f"dormel-test-{os.getpid()}-{time.monotonic_ns()}"
            if not (pathlib.Path(root) / "cgroup.procs").exists():
                continue
            try:
                group.mkdir()
                self._groups.append(group)
            except OSError:
                pass  # not ours to divide; then the manager shares the group we are in

    def _enter_groups(self):
        for group in self._groups:
            try:
                (group / "cgroup.procs").write_text("0")
            except OSError:
                pass

    def _wait_until_ready(self):
        deadline = time.monotonic() + 15
        while time.monotonic() < deadline and self.process.poll() is None:
            state = self.systemctl("is-system-running").stdout.strip()
            if state in ("running", "degraded"):
                return
            time.sleep(0.05)
        text = self._log.read_text(errors="replace")
        self.stop()
        raise Unavailable("systemd --user does not start: " + text[-400:])

    def systemctl(self, *arguments):
        return subprocess.run(["systemctl", "--user", *arguments], env=self._environment, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)

    def stop(self):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
            try:
                self.process.wait(20)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()
        for group in self._groups:
            for folder, _, _ in os.walk(group, topdown=False):
                try:
                    os.rmdir(folder)
                except OSError:
                    pass
