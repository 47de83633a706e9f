"""The program itself in the real GNOME Shell: whatever happens to it or beside it, the lock holds.

DORMEL_KILLS, DORMEL_PLUGS and DORMEL_KEY_SECONDS make the rounds longer (3, 3 and 5)."""

import contextlib
import os
import random
import signal
import subprocess
import sys
import time
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools"))

from desk import Bundle, processes  # noqa: E402
from desk.gnome import GnomeDesk, extension  # noqa: E402
from desk.gnome.extension import UUID  # noqa: E402
from desk.keyboard import EVDEV  # noqa: E402
from desk.night import Night  # noqa: E402
from desk.wait import until  # noqa: E402

# What the shell counts with every frame that it paints: those, and those in which the cover was not all there.
COUNT = """
global.dormelFrames = [0, 0];
global.dormelWatch = global.stage.connect('before-paint', () => {
    const top = global.stage.get_last_child();
    const covered = top.name === 'dormel' && top.visible && top.opacity === 255 &&
        top.get_first_child().get_n_children() === Main.layoutManager.monitors.length;
    global.dormelFrames[covered ? 0 : 1]++;
}); 0"""
COUNTED = "global.stage.disconnect(global.dormelWatch); JSON.stringify(global.dormelFrames)"


def rounds(name, usual):
    return int(os.environ.get(name, usual))


class DarkeningNight(Night):
    """Looks on while the screens darken. `shades`: (time, the brightest channel at a corner of the first monitor)."""

    def see_lock(self, pid, mark):
        first = self.desk.eyes.monitors()[0]
        self.shades = []

        def black():
            shade = max(self.shell_corner(first))
            self.shades.append((time.monotonic(), shade))
            return shade == 0

        until("the lock has darkened", black, 15, every=0.05)
        super().see_lock(pid, mark)

    def shell_corner(self, monitor):
        return self.desk.server.rectangle(monitor.x + 5, monitor.y + monitor.height - 20, 1, 1).pixel(0, 0)


class GuardTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desk = cls.enterClassContext(GnomeDesk(prepare=extension.install))
        cls.shell = cls.desk.server
        cls.night = DarkeningNight(cls.desk, Bundle(cls.desk).install(), lambda *_: None)
        cls.night.arm()

    def setUp(self):
        self.assert_held(within=15)

    def saw(self, text):
        print(f"    {text}", flush=True)

    @property
    def pid(self):
        return self.night.bundle.wait_for_scheduled(5)

    def extension(self, what):
        """What the extension knows at this moment."""
        return self.shell.run(f"Main.extensionManager.lookup('{UUID}').stateObj.{what}")

    def in_its_hands(self):
        return self.extension("_holder !== null") == "true" and self.extension("_keys.areHeld") == "true"

    def assert_held(self, within=3):
        """Black, the keys are the program's and nobody else's, and what it shows is there."""
        until("the lock is in the program's hands", self.in_its_hands, within)
        until("every monitor is black", self.desk.eyes.dark, within)
        self.assertFalse(self.desk.keys_reach_the_document())
        until("the keys show", lambda: self.night._caps(self.desk.eyes.monitors(), bright=120, enough=40), within)

    @contextlib.contextmanager
    def covered_in_every_frame(self):
        self.shell.run(COUNT)
        yield
        covered, bare = map(int, self.shell.run(COUNTED).strip('"[]').split(","))
        self.saw(f"{covered} frames covered, {bare} not")
        self.assertEqual(bare, 0)
        self.assertGreater(covered, 0)

    def test_darkened_slowly_with_the_keys_taken(self):
        """Over 2.5 s, also where the desktop's own animations are off, and nobody else hears a key meanwhile."""
        shades = self.night.shades
        lit = shades[0][1]
        began = next(at for at, shade in shades if shade < lit)
        between = [shade for _, shade in shades if 0 < shade < lit]
        self.saw(f"dark {shades[-1][0] - began:.2f} s after it began; on the way {between}")
        self.assertEqual(between, sorted(between, reverse=True))
        self.assertGreater(len({shade for shade in between if 0.2 * lit < shade < 0.8 * lit}), 2)
        self.assertAlmostEqual(shades[-1][0] - began, 2.5, delta=0.7)
        taken = next(at for at, focused in self.desk.witness.focus if at > self.night.began and not focused)
        self.assertLess(taken, began)

    def test_killed_again_and_again(self):
        took = []
        with self.covered_in_every_frame():
            for _ in range(rounds("DORMEL_KILLS", 3)):
                before = self.pid
                killed = time.monotonic()
                Bundle.kill(before)
                until("nobody has it", lambda: not self.in_its_hands(), 1)
                until("another run has it", self.in_its_hands, 3)
                took.append(time.monotonic() - killed)
                self.assertNotEqual(self.pid, before)
                self.assertTrue(self.desk.eyes.dark())
        self.saw(f"{len(took)} kills; in its hands again after {min(took):.2f} to {max(took):.2f} s")
        self.assert_held()

    def test_the_painter_dies(self):
        def painters():
            return [pid for pid, command in processes.of_home(self.desk.home.path).items()
                    if command[0].endswith("/paint") and processes.alive(pid)]
        with self.covered_in_every_frame():
            for number in (signal.SIGKILL, signal.SIGSEGV):
                with self.subTest(number):
                    old = until("a painter", painters, 5)
                    before = self.pid
                    for pid in old:
                        os.kill(pid, number)
                    until("another painter", lambda: any(pid not in old for pid in painters()), 6)
                    self.assert_held(within=10)
                    self.assertEqual(self.pid, before)

    def test_disabled_and_enabled(self):
        for gone, restarted in ((1, False), (13, True)):
            with self.subTest(seconds=gone):
                before = self.pid
                self.shell.shell("Extensions.DisableExtension", UUID)
                until("nothing is covered", lambda: not self.desk.eyes.dark(), 3)
                time.sleep(gone)  # a program that has lost its display for ten seconds starts again
                self.shell.shell("Extensions.EnableExtension", UUID)
                until("it covers before anybody says so", self.desk.eyes.dark, 3)
                self.assert_held(within=15)
                self.assertEqual(self.pid != before, restarted)

    def test_a_prompt_for_a_password(self):
        """The keyring's, which takes the keys for a moment."""
        prompt = ("import gi; gi.require_version('Gcr', '4'); from gi.repository import Gcr; "
                  "p = Gcr.SystemPrompt.open(-1, None); p.set_title('x'); p.set_message('y'); p.password(None)")
        before = self.shell.run("Main.modalCount")
        with self.covered_in_every_frame(), contextlib.closing(Process(prompt, self.desk)):
            until("it is there", lambda: self.shell.run("Main.modalCount") > before, 10)
            self.assert_held()
        until("it is gone", lambda: self.shell.run("Main.modalCount") == before, 10)
        self.assert_held()

    def test_monitors(self):
        with self.covered_in_every_frame():
            for _ in range(rounds("DORMEL_PLUGS", 3)):
                name = self.shell.plug(1024, 768)
                self.assertTrue(self.desk.eyes.dark())
                self.shell.pull(name)
                until("it is gone", lambda: len(self.shell.monitors()) == 2, 5)
        self.assert_held()

    def test_keys(self):
        chance, taps = random.Random(1), 0
        before, began = self.cost(), time.monotonic()
        with self.covered_in_every_frame():
            while time.monotonic() - began < rounds("DORMEL_KEY_SECONDS", 5):
                self.desk.keyboard.chord(*chance.sample(list(EVDEV.values()), chance.randint(1, 4)))
                taps += 1
        after, seconds = self.cost(), time.monotonic() - began
        self.saw(f"{taps} chords in {seconds:.0f} s; the shell's memory {before[0]:.0f} -> {after[0]:.0f} MB, "
                 f"{100 * (after[1] - before[1]) / seconds:.0f} % of a processor")
        self.assert_held()

    def cost(self):
        """The shell's memory in MB, and its seconds of the processor."""
        with open(f"/proc/{self.shell.pid}/stat", encoding="ascii") as file:
            ticks = sum(map(int, file.read().rpartition(")")[2].split()[11:13]))
        return self.shell.memory(), ticks / os.sysconf("SC_CLK_TCK")


class Process:
    """A line of Python as another program of the session."""

    def __init__(self, line, desk):
        self._process = subprocess.Popen(["/usr/bin/python3", "-c", line], env=desk.environment(),
                                         stdin=subprocess.DEVNULL)

    def close(self):
        self._process.kill()
        self._process.wait()


if __name__ == "__main__":
    unittest.main()
