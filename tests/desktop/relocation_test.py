"""A copy in the wrong place: it offers to move itself, moves, and comes back from the new place, where the job finds it."""

import os
import shutil
import signal
import subprocess
import time
import unittest

from case import ESCAPE, RETURN, DesktopCase, until
from desk import processes


class RelocationTest(DesktopCase):
    def downloaded(self, **options):
        """A desk whose Applications folder is empty; the program lies in the downloads."""
        desk = self.desk(windows="openbox", **options)
        self.source = os.path.join(desk.home.path, "Downloads", "Dormel.app")
        os.makedirs(os.path.dirname(self.source))
        os.rename(desk.bundle.path, self.source)
        return desk

    def open(self, desk, command=None):
        """Opens the downloaded copy; answers its process and the alert it shows."""
        process = subprocess.Popen(command or [os.path.join(self.source, "Contents", "Linux", "Dormel")],
                                   env=desk.environment(), cwd=os.path.dirname(self.source), stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        return self.started(process), self.in_front(desk, process, "Move Dormel to Applications")

    def moves_and_locks(self, **options):
        desk = self.downloaded(**options)
        desk.home.hours_around_now(onboardingComplete=True)
        process, _ = self.open(desk)
        begun = self.clock()
        desk.keyboard.tap(RETURN)
        until("the old process has ended", lambda: not processes.alive(process.pid), 15)
        copied = self.clock()
        # Not yet reaped it still counts as running, and so the new copy has to wait for it.
        self.assert_never(lambda: [desk.bundle.program] in processes.of_home(desk.home.path).values(), 0.5)
        self.assertEqual(process.wait(), 0)
        reaped = self.clock()
        self.opened(desk)
        self.saw(f"moved in {copied - begun:.2f} s, its window {self.clock() - reaped:.2f} s after the old one had gone")

        # Its user throws the old copy away: the job must not need it.
        shutil.rmtree(os.path.dirname(self.source))
        pid = desk.bundle.wait_for_scheduled()
        until("the lock, from the new place", lambda: desk.eyes.covered(pid), 10)
        os.kill(pid, signal.SIGKILL)
        begun = self.clock()
        pid = desk.bundle.wait_for_scheduled(other_than=pid)
        until("the next scheduled run locks", lambda: desk.eyes.covered(pid), 10)
        self.saw(f"killed, and locked again after {self.clock() - begun:.1f} s")
        entry = os.path.join(desk.home.path, ".local/share/applications", desk.home.identifier + ".desktop")
        with open(entry, encoding="utf-8") as file:
            self.assertIn(f'\nExec="{desk.bundle.program}"\n', file.read())

    def assert_never(self, seen, seconds):
        deadline = self.clock() + seconds
        while self.clock() < deadline:
            self.assertFalse(seen())
            time.sleep(0.02)

    def test_moves_and_the_next_run_locks(self):
        self.moves_and_locks()

    def test_moves_and_the_next_run_locks_under_a_user_manager(self):
        self.moves_and_locks(manager=True)

    def test_from_a_read_only_image(self):
        desk = self.downloaded()
        process, alert = self.open(desk)
        desk.keyboard.tap(ESCAPE)
        process.wait(5)
        image = os.path.dirname(self.source)
        mount = 'mount --bind "$0" /mnt && mount -o remount,bind,ro /mnt && cd / && exec /mnt/Dormel.app/Contents/Linux/Dormel'
        if subprocess.run(["unshare", "-m", "sh", "-c", mount.replace("exec ", ": "), image], check=False,
                          stderr=subprocess.DEVNULL).returncode:
            self.skipTest("no mounts of one's own here")
        desk.home.hours_around_now(onboardingComplete=True)
        process, image_alert = self.open(desk, ["unshare", "-m", "sh", "-c", mount, image])
        self.assertGreater(image_alert.height, alert.height + 20, "the longer text, about ejecting it")
        self.assertIn(process.pid, self.holders(desk, "/mnt/"))
        desk.keyboard.tap(RETURN)
        self.assertEqual(process.wait(15), 0)
        self.opened(desk)
        desk.bundle.wait_for_scheduled()
        self.assertEqual(self.holders(desk, "/mnt/"), {}, "the image can be ejected")

    @staticmethod
    def holders(desk, folder):
        """The processes that hold on to something in a folder, and to what: programs, libraries, open files, where
        they are."""
        found = {}
        for pid in processes.of_home(desk.home.path):
            try:
                with open(f"/proc/{pid}/maps", encoding="utf-8") as maps:
                    names = {line.split(maxsplit=5)[-1].strip() for line in maps}
                links = [f"/proc/{pid}/cwd"] + [f"/proc/{pid}/fd/{fd}" for fd in os.listdir(f"/proc/{pid}/fd")]
                names |= {os.readlink(link) for link in links}
            except OSError:
                continue  # it ended meanwhile
            held = sorted(name for name in names if name.startswith(folder))
            if held:
                found[pid] = held
        return found


if __name__ == "__main__":
    unittest.main()
