"""A private user manager (`systemd --user`), so that jobs armed in a private home run there and nowhere else.

In a bare container several of them may run for the same user. They would then share one tree of control groups and
end each other's services, so each is put into a group of its own where we may make one. Where no user manager can
run at all, the program falls back to its built-in supervisor, and so do its tests here: `available` says why.
"""

import glob
import os
import shutil
import subprocess
import time

from . import processes
from .wait import NotSeen

BINARY = next((p for p in ("/usr/lib/systemd/systemd", "/lib/systemd/systemd") if os.path.exists(p)), None)


def available():
    """None when a user manager can run here, else the reason why not."""
    if BINARY is None:
        return "systemd is not installed"
    if not os.path.isdir("/run/systemd/system"):
        try:
            os.makedirs("/run/systemd/system", exist_ok=True)  # what tells its tools that systemd is in charge
        except OSError:
            return "/run/systemd/system does not exist and cannot be made"
    if shutil.which("systemctl") is None:
        return "systemctl is not installed"
    return None


class UserManager:
    def __init__(self, home, folder, environment=None):
        self._home = home
        self._folder = folder
        self._environment = {**home.environment(), **(environment or {})}
        self._process = None
        self._groups = []

    def start(self):
        why = available()
        if why is not None:
            raise NotSeen(why)
        self._groups = _own_groups(f"dormel-desk-{os.getpid()}-{id(self) & 0xFFFF:x}")

        def enter():
            for group in self._groups:
                try:
                    with open(os.path.join(group, "cgroup.procs"), "w", encoding="ascii") as file:
                        file.write("0")
                except OSError:
                    pass

        with open(os.path.join(self._folder, "systemd.out"), "wb") as out:
            self._process = subprocess.Popen([BINARY, "--user"], env=self._environment, preexec_fn=enter, stdout=out,
                                             stderr=out, stdin=subprocess.DEVNULL, start_new_session=True)
        deadline = time.monotonic() + 15
        while True:
            state = self.ask("is-system-running")
            if state in ("running", "degraded") and os.path.exists(os.path.join(self._home.runtime, "bus")):
                return self
            if self._process.poll() is not None:
                raise NotSeen(f"the user manager ended at its start, status {self._process.returncode}")
            if time.monotonic() > deadline:
                self.stop()
                raise NotSeen(f"the user manager is not up after 15 s (state: {state or 'no answer'})")
            time.sleep(0.02)

    def ask(self, *arguments):
        """What `systemctl --user` prints for the arguments."""
        done = subprocess.run(["systemctl", "--user", *arguments], env=self._environment, capture_output=True,
                              text=True, timeout=20, check=False)
        return done.stdout.strip()

    def show(self, unit, *properties):
        text = self.ask("show", unit, "-p", ",".join(properties))
        return dict(line.partition("=")[::2] for line in text.splitlines())

    def stop(self):
        if self._process is None:
            return
        processes.end(self._process, 10)
        for group in self._groups:
            for path in sorted(glob.glob(group + "/**/", recursive=True), key=len, reverse=True):
                try:
                    os.rmdir(path)
                except OSError:
                    pass


def _own_groups(name):
    """A control group of that name in every hierarchy where this process may make one."""
    groups = []
    roots = ["/sys/fs/cgroup"] if os.path.exists("/sys/fs/cgroup/cgroup.procs") else glob.glob("/sys/fs/cgroup/*/")
    for root in roots:
        if os.path.basename(root.rstrip("/")) == "cpuset":
            continue  # a new group has no processors there
        group = os.path.join(root, name)
        try:
            os.mkdir(group)
            groups.append(group)
        except OSError:
            pass
    return groups
