"""The first run, screen by screen, as somebody lives through it who sees the window or has it read aloud: by the mouse or
by the keyboard alone. Each step is really seen, or NotSeen.
"""

import datetime
import os
import re
import subprocess
import time

from .keyboard import DOWN, RETURN, SPACE, TAB, UP, evdev_of_label
from .wait import NotSeen, until

MOST_TABS = 12


def noon():
    """The time zone in which it is noon now, so that hours of the night that are chosen there have not begun."""
    return f"NOON{time.gmtime().tm_hour - 12:+d}"


class ByMouse:
    def __init__(self, desk, reader):
        self._desk, self._reader = desk, reader

    def press(self, name, within=10):
        """Clicks a control once it can be used and has stopped moving."""
        seen = [self._reader.wait_for(name, within)]

        def rests():
            seen.append(self._reader.find(name))
            return seen[-1] == seen[-2]

        until(f"{name!r} rests", rests, 5, every=0.1)
        self._desk.mouse.click(*seen[-1].centre)

    def turn_to(self, label):
        self.press(label)
        until(f"{label!r} is selected", lambda: "selected" in self._reader.wait_for(label, 3).states, 3)


class ByKeyboard:
    """Everything is reached by Tab. Buttons are pressed by Space and Return in turn."""

    def __init__(self, desk, reader):
        self._desk, self._reader = desk, reader
        self._next = RETURN

    def go_to(self, name, within=10):
        self._reader.wait_for(name, within)
        until("a window has the keyboard", lambda: any("active" in e.states for e in self._reader.elements()), 5)
        for _ in range(MOST_TABS):
            at = self._reader.focused()
            if at.name == name:
                return
            self._desk.keyboard.tap(TAB)
            until("the focus moves", lambda: self._reader.focused().address != at.address, 2, every=0.02)
        raise NotSeen(f"Tab leads to {name!r}")

    def press(self, name, within=10):
        self.go_to(name, within)
        self._next = SPACE if self._next == RETURN else RETURN
        self._desk.keyboard.tap(self._next)

    def turn_to(self, label):
        self._reader.wait_for(label, 10)
        rows = [e for e in self._reader.elements() if e.role == "list item" and "enabled" in e.states]
        now = next(i for i, row in enumerate(rows) if "selected" in row.states)
        way = [row.name for row in rows].index(label) - now
        self._desk.keyboard.tap(*[DOWN if way > 0 else UP] * abs(way))
        until(f"{label!r} is selected", lambda: "selected" in self._reader.wait_for(label, 3).states, 3)


class FirstRun:
    """Plays on a desk with an installed bundle. report(title, detail, at, picture) is called as for a night."""

    def __init__(self, desk, bundle, reader, hand, report):
        self._desk, self._bundle, self._reader, self.hand, self._report = desk, bundle, reader, hand, report
        self.process = None

    def open(self):
        self.process = self._bundle.start(environment=self._reader.environment(), output=subprocess.DEVNULL)

    def window(self):
        """The program's one window."""
        return self._reader.wait_for("Dormel", 10, role="frame")

    def area(self):
        """Where it stands: x, y, width, height."""
        window = self.window()
        return window.x, window.y, window.width, window.height

    def see(self, name, within=10):
        return self._reader.wait_for(name, within)

    def _screen(self, says, last, picture, within=10):
        """A screen that says that, once the last of it has come up."""
        self.see(says, within)
        control = self.see(last, within)
        until(f"{last!r} rests", lambda: (before := self._reader.find(last)) and time.sleep(0.2) is None
              and self._reader.find(last) == before, 5)
        self._report(says, "", time.monotonic(), picture)
        return control

    def greet(self):
        self._screen("Say hello to your good sleep.", "Begin", "brand")
        self.hand.press("Begin")
        self._screen("Your computer locks at your bedtime.", "Continue", "promise")
        self.hand.press("Continue")

    def answer(self, late="2 AM", nights="3–4 nights", want="11 PM", keeps="Scrolling"):
        self._screen("What's the latest you go to bed?", "Continue", "latest")
        self.hand.turn_to(late)
        self.hand.press("Continue")
        self._screen("How often do you sleep this late?", nights, "nights")
        self.hand.press(nights)
        self._screen("When do you want to be asleep?", "Continue", "want")
        self.hand.turn_to(want)
        self.hand.press("Continue")
        self.hand.press(keeps)
        self._screen("What keeps you up?", "Continue", "keeps")
        self.hand.press("Continue")

    def look_in_the_mirror(self, hours="12"):
        self._screen("You're losing", "I want to sleep better", "mirror")
        until("it has counted up", lambda: self._reader.find(hours), 5)
        self.hand.press("I want to sleep better")

    def watch(self):
        """The scene; answers how long it took."""
        self.see("How Dormel works")
        began = time.monotonic()
        until("the ring is half full", lambda: any(int(e.name.split()[0]) >= 50 for e in self._reader.elements()
                                                   if e.role == "progress bar"), 18, every=0.05)
        self._report("How Dormel works", "", time.monotonic(), "how")
        self._screen("It gets you to sleep.", "Continue", "how-it-ends", 22)
        took = time.monotonic() - began
        self.hand.press("Continue")
        return took

    def try_it(self):
        """The permission, which is there, and the demo: the lock, held open for 5 s."""
        desk = self._desk
        self._screen("Let's test Dormel.", "Continue", "permission")
        self.hand.press("Continue")
        self._screen("Ready to try?", "Test Dormel", "demo")
        mark = len(desk.home.log("debug.log"))
        self.hand.press("Test Dormel")
        until("every screen is covered", lambda: desk.eyes.covered(self.process.pid), 5)
        if desk.keys_reach_the_document():
            raise NotSeen("the keyboard is taken")
        keys = until("the keys are drawn", lambda: desk.home.drawn_keys(mark), 5)
        mark = len(desk.home.log("debug.log"))
        desk.keyboard.press(*map(evdev_of_label, keys))
        began = time.monotonic()
        desk.home.wait_for_line("debug.log", "✔", 8, mark)
        self._report("The demo", f"{'  '.join(keys)} for {time.monotonic() - began:.1f} s", time.monotonic(), None)
        desk.keyboard.let_go()
        until("the screens are free", lambda: not desk.eyes.covered(self.process.pid), 8)
        self._screen("Well done!", "Understood", "debrief")
        self.hand.press("Understood")

    def read_the_facts(self):
        self._screen("Better sleep, better everything.", "Continue", "science")
        self.hand.press("Continue")

    def finish(self, label, spoken, hour):
        """Chooses the lock hour, arms it, and asks the scheduler for its next start, which is answered."""
        desk = self._desk
        self._screen("When should your computer lock?", "Set my dormel", "schedule")
        self.hand.turn_to(label)
        self.hand.press("Set my dormel")
        self._screen(f"Locks at {spoken}", "Sleep Well", "finale")
        self.hand.press("Sleep Well")
        until("the first run is over", lambda: desk.home.settings().get("onboardingComplete"), 10)
        until("the settings took its place", lambda: not self._reader.find("Sleep Well"), 10, every=0.1)
        job = f"gui/{os.getuid()}/{desk.home.identifier}"
        asked = until("the job is loaded", lambda: (done := subprocess.run(
            [self._bundle.launchctl, "print", job], env=desk.environment(), capture_output=True, text=True,
            check=False)).returncode == 0 and done.stdout, 10, every=0.2)
        start = datetime.datetime.fromisoformat(re.search(r"next start = .*(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d)", asked)[1])
        if (start.hour, start.minute) != (hour, 0):
            raise NotSeen(f"the job waits for {hour}:00 (it waits for {start})")
        self._report("The scheduler", f"next start {start}", time.monotonic(), "armed")
        return start
