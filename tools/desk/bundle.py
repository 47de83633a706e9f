"""The program as it is installed: in an Applications folder, started by its scheduler or by hand."""

import os
import shutil
import signal
import subprocess

from . import processes
from .home import IDENTIFIER
from .wait import until

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


class Bundle:
    """Dormel.app in a private Applications folder: installed from a build folder (`build`, or DORMEL_BUILD, or the
    release build), or copied from a bundle that is named by DORMEL_BUNDLE. DORMEL_INSTALLED names one that is used where
    it stands: a package's."""

    def __init__(self, desk, build=None):
        self._desk = desk
        self.build = build or os.environ.get("DORMEL_BUILD", os.path.join(ROOT, "build", "release"))
        self._installed = os.environ.get("DORMEL_INSTALLED")
        self.path = self._installed or os.path.join(desk.home.applications, "Dormel.app")
        self.program = os.path.join(self.path, "Contents", "Linux", "Dormel")
        self.launchctl = os.path.join(self.path, "Contents", "Helpers", "launchctl")

    def install(self):
        ready = os.environ.get("DORMEL_BUNDLE")
        if self._installed:
            pass
        elif ready:
            shutil.copytree(ready, self.path, symlinks=True)
        else:
            done = subprocess.run(["cmake", "--install", self.build, "--prefix", self._desk.home.applications],
                                  capture_output=True, text=True, timeout=120, check=False)
            if done.returncode != 0:
                raise AssertionError(f"cmake --install {self.build}: {done.stdout}{done.stderr}")
        if not os.access(self.program, os.X_OK):
            raise AssertionError(f"there is no program {self.program}")
        return self

    def run(self, *arguments, within=30, environment=None):
        """Runs the program to its end: the finished process, with its output as text."""
        return subprocess.run([self.program, *arguments], env={**self._desk.environment(), **(environment or {})},
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=within, check=False)

    def start(self, *arguments, environment=None, output=subprocess.PIPE):
        """Starts the program and leaves it running; the caller ends it."""
        return subprocess.Popen([self.program, *arguments], env={**self._desk.environment(), **(environment or {})},
                                stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT, text=True)

    def setup(self):
        """Arms the scheduler, which at once starts the job."""
        done = self.run("--setup")
        if done.returncode != 0 or "Setup complete — agent installed." not in done.stdout:
            raise AssertionError(f"--setup answered {done.returncode}: {done.stdout}{done.stderr}")

    def scheduled(self):
        """The process id of the scheduled run that is alive, or None."""
        for pid, command in processes.of_home(self._desk.home.path).items():
            if self.program in command[:2] and "--scheduled" in command and processes.alive(pid):
                return pid
        return None

    def wait_for_scheduled(self, within=15, other_than=None):
        return until("the scheduler starts the program",
                     lambda: (pid := self.scheduled()) is not None and pid != other_than and pid, within)

    def last_exit(self):
        """How the scheduled run ended, as the user manager saw it: "exited 0", "killed 9"; None without one."""
        if self._desk.manager is None:
            return None
        seen = self._desk.manager.show(f"{IDENTIFIER}.service", "ExecMainCode", "ExecMainStatus", "MainPID")
        if seen.get("MainPID") != "0":
            return None
        code = {"1": "exited", "2": "killed", "3": "dumped"}.get(seen.get("ExecMainCode"))
        return f"{code} {seen.get('ExecMainStatus')}" if code else None

    def uninstall(self):
        return self.run("--uninstall")

    @staticmethod
    def kill(pid):
        os.kill(pid, signal.SIGKILL)
