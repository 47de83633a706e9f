"""What may go wrong around the program on a Wayland desktop: tests/chaos/run --desktop NAME plays these trials."""

import os
import signal
import subprocess
import time

from .. import processes
from ..bundle import Bundle
from ..keyboard import evdev_of_label
from ..wait import until
from .desk import WaylandDesk
from .witness import Overlay, Witness


def trials(base, promise, compositor):
    """By their names; `base` is what every trial has (tests/chaos/run)."""

    class Trial(base):
        def play(self):
            with WaylandDesk(compositor) as desk:
                desk.bundle = Bundle(desk).install()
                self.try_out(desk)

        @staticmethod
        def deaf(desk):
            until("no key reaches the document", lambda: not desk.keys_reach_the_document(), 6)

        @staticmethod
        def black_at(desk, within=10):
            """When it was looked, and everything was black; taking the pictures takes longer than what they show."""
            looked = []

            def look():
                looked.append(time.monotonic())
                return desk.eyes.dark()
            until("every screen is black", look, within, every=0.002)
            return looked[-1]

    class Kills(Trial):
        """kill -9 while blocked: the scheduler brings it back, and it covers every screen again within 3 s."""

        def try_out(self, desk):
            again = self.record("killed, covered again (an overlay: the keyboard taken again)", 3.0)
            desk.home.hours_around_now()
            desk.bundle.setup()
            pid = desk.bundle.wait_for_scheduled()
            until("covered", desk.eyes.dark, 10)
            for _ in range(self.rounds(50)):
                time.sleep(self.chance.uniform(0, 0.6))
                killed = time.monotonic()
                os.kill(pid, signal.SIGKILL)
                pid = desk.bundle.wait_for_scheduled(other_than=pid)
                if any("session lock" in line for line in desk.home.log("dormel.log")):
                    again.add(self.black_at(desk) - killed)
                    continue
                # The overlay fades in, and has the keyboard from the first moment.
                lost = until("the keyboard is taken again", lambda at=killed: desk.keyboard_lost_at(at), 10, every=0.01)
                again.add(lost - killed)
                self.black_at(desk)
            self.deaf(desk)

    class Screens(Trial):
        """Monitors come, go and change their scale."""

        def try_out(self, desk):
            # No compositor tells when it has changed them: from asking until the pictures are taken is an upper bound.
            dark = self.record("a change of the monitors asked for, pictures taken that are black to the edges", 2.0)
            self.lock(desk)
            pulls = desk.server.pulls()
            for _ in range(self.rounds(100)):
                names = [m.name for m in desk.eyes.monitors()]
                began = time.monotonic()
                if pulls and len(names) > 1 and self.chance.random() < 0.5:
                    desk.server.pull(self.chance.choice(names))
                elif len(names) < (2 if pulls else 5) and (pulls or self.chance.random() < 0.1):
                    desk.server.plug(*self.chance.choice(((1280, 1024), (1920, 1080), (640, 480))))
                else:
                    desk.server.scale(self.chance.choice(names), self.chance.choice((1, 1.25, 1.5, 2)))
                self.black_at(desk)
                dark.add(time.monotonic() - began)
            self.deaf(desk)

    class Rivals(Trial):
        """Windows and overlays of other programs that open and want the keyboard."""

        def try_out(self, desk):
            back = self.record("another program opened, no key reaches it", 5.0)
            self.lock(desk)
            for _ in range(self.rounds(50)):
                rival = (Overlay(desk.server.path) if self.chance.random() < 0.5 else
                         Witness(desk.server.path, waits_for_keyboard=False))
                try:
                    until("it is open", lambda rival=rival: rival.shown, 5)
                    began = time.monotonic()

                    def passes(rival=rival):
                        mark = rival.mark()
                        desk.keyboard.tap(67)
                        time.sleep(0.03)
                        return rival.heard(mark)
                    until("no key reaches it", lambda: not passes(), 10, every=0.01)
                    back.add(time.monotonic() - began)
                finally:
                    rival.close()
            self.deaf(desk)
            keys = until("the keys are drawn", desk.home.drawn_keys, 5)
            mark = len(desk.home.log("debug.log"))
            desk.keyboard.press(*map(evdev_of_label, keys))
            desk.home.wait_for_line("debug.log", "holding 2.", 6, mark)
            desk.keyboard.let_go()

    class Orphans(Trial):
        """The program dies, at any moment, alone or with what watches over its lock, and a start finds nothing to
        lock, or none comes: the desktop is free."""

        def try_out(self, desk):
            alone = self.record("killed and never started again, free", 15.0)
            started = self.record("started again with nothing to lock, free", 3.0)
            for _ in range(self.rounds(30)):
                desk.home.change_settings(blockingEnabled=True)
                desk.home.hours_around_now(onboardingComplete=True)
                process = desk.bundle.start("--scheduled", output=subprocess.DEVNULL)
                time.sleep(self.chance.uniform(0, 4))
                process.kill()
                process.wait()
                times = alone
                if self.chance.random() < 0.5:
                    times = started
                    for pid, command in processes.of_home(desk.home.path).items():
                        if command[0] == "dormel-watch":
                            os.kill(pid, signal.SIGKILL)
                    desk.home.change_settings(blockingEnabled=False)
                    promise(desk.bundle.start("--scheduled", output=subprocess.DEVNULL).wait(10) == 0, "it ended with status 0")
                began = time.monotonic()
                until("the desktop is free", lambda: desk.keys_reach_the_document() and not desk.eyes.dark(), 20)
                times.add(time.monotonic() - began)

    found = {"kills": Kills, "rivals": Rivals, "orphans": Orphans}
    if compositor != "kwin":  # its monitors are windows, which nobody plugs
        found["screens"] = Screens
    return found
