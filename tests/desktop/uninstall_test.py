"""What is left when the program is gone: nothing that it wrote, and everything that was there before."""

import os
import stat
import subprocess
import time
import unittest

from case import RETURN, TAB, DesktopCase, until
from desk import processes

LEFT_SHIFT = 42
ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


def listing(*folders):
    """Everything in the folders: kind and permissions, and the content of files and links."""
    found = {}
    for top in folders:
        for folder, names, files in os.walk(top):
            for name in [*names, *files]:
                path = os.path.join(folder, name)
                status = os.lstat(path)
                content = ""
                if stat.S_ISLNK(status.st_mode):
                    content = os.readlink(path)
                elif stat.S_ISREG(status.st_mode):
                    with open(path, "rb") as file:
                        content = file.read()
                found[path] = (stat.filemode(status.st_mode), content)
    return found


class UninstallTest(DesktopCase):
    def desk_by_day(self, **options):
        """A desk on which it is noon, so that the hours the program starts with (0 to 6) are not on."""
        return self.desk(windows="openbox", extra={"TZ": f"NOON{time.gmtime().tm_hour - 12:+d}"}, **options)

    def snapshot(self, desk):
        # The runtime folder also holds what the session's own services keep there.
        found = listing(desk.home.path, desk.home.runtime)
        services = ("bus", "systemd", "openbox", "dbus-1")
        return {path: what for path, what in found.items()
                if not path.removeprefix(desk.home.runtime + "/").startswith(services) and "/.cache/openbox" not in path}

    def compare(self, before, after):
        self.assertEqual(sorted(after.keys() - before.keys()), [], "left behind")
        self.assertEqual(sorted(before.keys() - after.keys()), [], "taken away that was not ours")
        self.assertEqual([path for path in before if before[path] != after[path]], [], "changed")

    def played(self, **options):
        """Everything the program does in its life, from its arrival to its removal through its own window."""
        desk = self.desk_by_day(**options)
        downloaded = os.path.join(desk.home.path, "Downloads", "Dormel.app")
        os.makedirs(os.path.dirname(downloaded))
        os.rename(desk.bundle.path, downloaded)
        # Empty folders that were here before it stay; the others are its own.
        os.rmdir(desk.home.applications)
        os.makedirs(os.path.join(desk.home.path, ".config", "autostart"))
        os.makedirs(os.path.join(desk.home.path, "Library", "Logs"))
        before = self.snapshot(desk)

        moving = subprocess.Popen([os.path.join(downloaded, "Contents", "Linux", "Dormel")], env=desk.environment(),
                                  stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.in_front(desk, self.started(moving), "Move Dormel to Applications")
        desk.keyboard.tap(RETURN)
        self.assertEqual(moving.wait(15), 0)

        first = self.opened(desk)
        desk.bundle.setup()
        with open(desk.home.settings_path, "wb") as file:
            file.write(b"damaged")
        desk.bundle.setup()  # finds it damaged and keeps it aside

        desk.home.change_settings(blockStartHour=11, blockEndHour=15, debugLoggingEnabled=True)
        desk.bundle.setup()
        locked = desk.bundle.wait_for_scheduled()
        until("the lock", lambda: desk.eyes.covered(locked), 10)
        desk.home.change_settings(blockStartHour=0, blockEndHour=6)
        until("the end of the lock", lambda: not processes.alive(locked), 45)

        os.kill(first, 15)
        until("the window is closed", lambda: not processes.alive(first), 5)
        os.makedirs(os.path.join(desk.home.applications, ".Dormel.app.update", "new"))  # an update half fetched
        process = self.started(desk.bundle.start(output=subprocess.DEVNULL))
        self.in_front(desk, process, "Dormel")
        written = len(self.snapshot(desk)) - len(before)
        self.saw(f"moved, armed, locked for a while, its settings broken, opened: {written} files and folders written")
        self.assertGreater(written, 10)
        return desk, before, process

    def uninstall(self, desk, process):
        """Through the opened window, by keyboard."""
        window = self.in_front(desk, process, "Dormel")
        desk.keyboard.chord(LEFT_SHIFT, TAB)  # to the last control
        desk.keyboard.tap(RETURN)
        alert = self.in_front(desk, process, "Uninstall Dormel?")
        self.assertEqual(alert.belongs_to, window.id)
        desk.keyboard.tap(RETURN)
        self.in_front(desk, process, "Dormel uninstalled")
        desk.keyboard.tap(RETURN)
        self.assertEqual(process.wait(10), 0)

    def uninstalls(self, **options):
        desk, before, process = self.played(**options)
        self.uninstall(desk, process)
        self.compare(before, self.snapshot(desk))
        until("nothing of it runs", lambda: not [c for c in processes.of_home(desk.home.path).values()
                                                 if "Dormel.app" in c[0]], 5)
        return desk

    def test_uninstalled_in_its_window(self):
        self.uninstalls()

    def test_uninstalled_in_its_window_under_a_user_manager(self):
        desk = self.uninstalls(manager=True)
        if desk.manager is not None:
            self.assertNotIn(desk.home.identifier, desk.manager.ask("list-units", "--all", "--no-legend"))

    def test_uninstalled_from_the_checkout(self):
        desk, before, process = self.played()
        process.terminate()
        process.wait(5)
        done = subprocess.run([os.path.join(ROOT, "run"), "uninstall"], env=desk.environment(), check=False,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=60)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        self.compare(before, self.snapshot(desk))

if __name__ == "__main__":
    unittest.main()
