"""What the desktop tests share: a desk with the installed program, and the lock on it."""

import os
import subprocess
import sys
import time
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools"))

from desk import (ESCAPE, RETURN, SPACE, TAB, Bundle, Desk, NotSeen, evdev_of_label,  # noqa: E402,F401
                  processes, until)
from desk.screen_reader import ScreenReader  # noqa: E402


class DesktopCase(unittest.TestCase):
    def desk(self, **options):
        """A private desktop with the program installed; taken down when the test ends."""
        desk = Desk(**options)
        self.enterContext(desk)
        desk.bundle = Bundle(desk).install()
        return desk

    def saw(self, text):
        """Part of the test's record: what it measured."""
        print(f"    {text}", flush=True)

    def start(self, desk, *arguments, environment=None):
        """Starts the program as the scheduler would, its output going to dormel.log; killed when the test ends."""
        path = desk.home.log_path("dormel.log")
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "ab") as log:
            process = desk.bundle.start(*arguments, environment=environment, output=log)

        return self.started(process)

    def started(self, process):
        """A process that is killed when the test ends, if it has not ended by then."""
        self.addCleanup(lambda: (process.kill(), process.wait()))
        return process

    def reader(self, desk):
        """A screen reader on the desk, until the test ends."""
        reader = ScreenReader(desk)
        self.addCleanup(reader.close)
        return reader

    @staticmethod
    def opened(desk):
        """The process of the opened program, whoever started it, once its window is there."""
        return until("the window", lambda: next(
            (pid for pid, command in processes.of_home(desk.home.path).items()
             if command == [desk.bundle.program] and processes.alive(pid)
             and any(c.title == "Dormel" for c in desk.clients.of(pid))), None), 15)

    def lock(self, desk, **options):
        """A scheduled run inside the hours, once it covers every screen. Answers its process."""
        desk.home.hours_around_now(onboardingComplete=True)
        process = self.start(desk, "--scheduled", **options)
        try:
            until("the program covers every screen", lambda: desk.eyes.covered(process.pid), 10)
            until("every screen is black", desk.eyes.dark, 10)
        except NotSeen:
            self.saw("dormel.log ends: " + " / ".join(desk.home.log("dormel.log")[-4:]))
            self.saw(f"exit status: {process.poll()}")
            raise
        return process

    def press_the_keys(self, desk):
        """Presses the five keys that the lock asks for; answers their codes once the hold runs."""
        keys = until("the debug log names the keys", desk.home.drawn_keys, 5)
        codes = [evdev_of_label(label) for label in keys]
        mark = len(desk.home.log("debug.log"))
        desk.keyboard.press(*codes)
        desk.home.wait_for_line("debug.log", "▶ all keys held", 3, mark)
        return codes

    @staticmethod
    def in_front(desk, process, title):
        """A window of the process, once it has the focus."""
        return until(f"{title!r} has the focus",
                     lambda: next((c for c in desk.clients.of(process.pid)
                                   if c.title == title and desk.clients.active() == c.id), None), 10)

    def assert_brief(self, what, limit, look):
        """The longest exposure that look() answers is shorter than the limit, in one of three tries: a busy machine
        delays now and then, a fault delays each time."""
        seen = []
        while len(seen) < 3 and (not seen or seen[-1] >= limit):
            seen.append(look())
        self.assertLess(seen[-1], limit, f"{what}: {seen}")

    def assert_stays(self, process, seconds):
        """The process does not end within the time."""
        try:
            self.fail(f"ended with status {process.wait(seconds)}")
        except subprocess.TimeoutExpired:
            pass

    @staticmethod
    def clock():
        return time.monotonic()
