"""One night, step by step, on a private desktop: what a user would live through, each step really seen or NotSeen.

The program runs unmodified. It is armed by its own --setup and started by its own scheduler; its keys are read from
its debug log and pressed as keys; what it shows is judged by the pixels and windows that the X server holds.
"""

import time

from .keyboard import evdev_of_label
from .wait import No, NotSeen, until

FIRST_HOLD, LATER_HOLD, GRACE = 30.0, 60.0, 300.0


class Night:
    """Plays on a desk with an installed bundle.

    report(title, detail, at, picture) is called for each step as it is seen: `at` is the moment on the monotonic
    clock, `picture` a file name stem when the screens are worth a picture now, else None. speed: how much faster than
    ours the program's clocks run; durations asked of the steps are the program's.
    """

    def __init__(self, desk, bundle, report, speed=1.0):
        self.desk, self.bundle, self._report, self._speed = desk, bundle, report, speed
        self.began = None
        self.pid = None
        self.keys = None
        self.completed = None
        self._debug_mark = 0

    # The steps, in their order. Each can be played alone by a test that has played those before it.

    def arm(self):
        """Settings as a user has them, then --setup, which arms the scheduler, which starts the lock."""
        desk = self.desk
        if not desk.keys_reach_the_document():
            raise NotSeen("before the night, a key reaches the document")
        desk.home.hours_around_now()
        self._report("an evening at the desk", "a document has the keyboard", time.monotonic(), "evening")
        mark = desk.watcher.mark()
        self.began = time.monotonic()
        self.bundle.setup()
        manager = "systemd --user" if desk.manager else "the built-in supervisor"
        self._report("lock requested", f"Dormel --setup armed {manager}", self.began, None)
        self.see_lock(self.bundle.wait_for_scheduled(), mark)

    def see_lock(self, pid, mark):
        """The first lock of a program that was started after the mark in the watcher's record."""
        self.pid = pid
        self._see_lock(mark, None, "covered")

    def _see_lock(self, mark, previous_keys, picture):
        desk = self.desk
        monitors = desk.eyes.monitors()
        # The windows that are told of the grab are so new that one may listen too late, and hear nothing of it.
        until("the keyboard is taken",
              lambda: desk.watcher.since(mark, "grab") or not desk.keys_reach_the_document(), 10, every=0.1)
        taken = next((event.at for event in desk.watcher.since(mark, "grab")), time.monotonic())
        pids = {self.pid}
        covered = until("windows of the program cover every monitor",
                        lambda: desk.watcher.covered_at(monitors, mark, desk.eyes.pid_of, pids), 10)
        until("the program's windows are on top everywhere", lambda: desk.eyes.covered(pids), 5)
        self._report("keyboard taken", f"process {self.pid}", taken, None)
        self._report("both screens covered", " and ".join(map(str, monitors)), covered, picture)
        if desk.keys_reach_the_document():
            raise NotSeen("while locked, a key does not reach the document")
        until("every screen is black", desk.eyes.dark, 10)
        self._report("both screens black", "and no key reaches the document", time.monotonic(), None)
        self.keys = until("the debug log names the keys", lambda: desk.home.drawn_keys(self._debug_mark), 10)
        if previous_keys is not None and self.keys == previous_keys:
            raise NotSeen("new keys after the lock came back")
        until("the keys show on every screen", lambda: self._caps(monitors, bright=120, enough=40), 10)
        self._report("keys shown", "  ".join(self.keys), time.monotonic(), f"keys-{picture}")

    def let_go_early(self):
        """A hold that is broken earns nothing."""
        desk = self.desk
        codes = [evdev_of_label(label) for label in self.keys]
        mark = len(desk.home.log("debug.log"))
        desk.keyboard.press(*codes)
        desk.home.wait_for_line("debug.log", "▶ all keys held", 3, mark)
        held_from = time.monotonic()
        desk.home.wait_for_line("debug.log", "holding 2.", 5, mark)
        desk.keyboard.release(codes[2])
        desk.home.wait_for_line("debug.log", "⏸ released", 3, mark)
        desk.keyboard.let_go()
        self._report("let go too early", f"after {time.monotonic() - held_from:.1f} s: the clock starts again",
                     time.monotonic(), None)

    def hold(self, seconds):
        """Holds the five keys until the program says that they were held long enough, then lets go."""
        desk = self.desk
        monitors = desk.eyes.monitors()
        mark = len(desk.home.log("debug.log"))
        desk.keyboard.press(*[evdev_of_label(label) for label in self.keys])
        desk.home.wait_for_line("debug.log", "▶ all keys held", 3, mark)
        began = time.monotonic()
        self._report("five keys held", f"{seconds:.0f} s to go", began, None)
        until("the held keys light up", lambda: self._caps(monitors, bright=200, enough=5000), 3)
        self._wait_for_hold(mark, 0.5 * seconds)
        self._report("half of the hold", "", time.monotonic(), f"half-of-{seconds:.0f}-s")
        self._wait_for_hold(mark, seconds - 2)
        self._report("two seconds left", "", time.monotonic(), f"last-of-{seconds:.0f}-s")
        if not desk.eyes.covered({self.pid}):
            raise NotSeen("the screens stay covered during the hold")
        desk.home.wait_for_line("debug.log", "✔ HOLD COMPLETE", 5, mark)
        self.completed = time.monotonic()
        took = self._speed * (self.completed - began)
        if not seconds - 0.2 <= took <= seconds + 0.5 * self._speed:
            raise NotSeen(f"a hold of {seconds:g} s (it took {took:.2f} s)")
        self._report("hold complete", f"after {took:.2f} s", self.completed, None)

    def _wait_for_hold(self, mark, elapsed):
        def reached():
            for line in reversed(self.desk.home.log("debug.log")[mark:]):
                _, found, rest = line.partition("  holding ")
                if found:
                    return float(rest.split("/")[0]) >= elapsed
            return False
        until(f"the hold reaches {elapsed:g} s", reached, elapsed + 5, every=0.05)

    def unlock(self):
        """The confirmation, the way out, the pill, and the keyboard back in the document.

        Answers how many lines the unlock log has.
        """
        desk = self.desk
        monitors = desk.eyes.monitors()
        mark = desk.watcher.mark()
        if self._speed == 1.0:  # sped up, it is gone before one has looked at all screens
            left = list(monitors)  # it lasts two seconds: what has shown it is not looked at again
            until("\"Unlocked. Let go.\" on every screen", lambda: self._confirmation(left), 2)
            self._report("unlock confirmed", "\"Unlocked. Let go.\"", time.monotonic(), "confirmed")
        desk.keyboard.let_go()
        until("the lock is off every screen", lambda: not any(desk.lock_covers(m, self.pid) for m in monitors), 8)
        lifted = time.monotonic()
        self._report("screens free", f"{self._speed * (lifted - self.completed):.1f} s after the hold", lifted, None)
        pill = until("the countdown pill", lambda: desk.pill(self.pid), 3)
        until("the pill's picture", lambda: self._counts(pill), 5)
        self._report("countdown pill", f"{pill.width} × {pill.height} in the corner of the main screen",
                     time.monotonic(), "pill")
        desk.watcher.first("ungrab", mark, 6, "the keyboard is let go")
        until("a key reaches the document again", desk.keys_reach_the_document, 5)
        self._report("keyboard back", "a key reaches the document", time.monotonic(), None)
        unlocks = until("a line in the unlock log", lambda: desk.home.log("dormel-unlock.log"), 3)
        return len(unlocks)

    def wait_out_the_grace(self):
        """The whole five minutes; then new keys, and 60 s asked."""
        desk = self.desk
        self._debug_mark = len(desk.home.log("debug.log"))
        lines = len(desk.home.log("dormel.log"))
        mark = desk.watcher.mark()
        before = self.keys
        # The grab of the new lock is the first of its events; the pill and the document cause none.
        returned = desk.watcher.first("grab", mark, GRACE / self._speed + 5, "the lock returns after the grace").at
        took = self._speed * (returned - self.completed)
        self._report("grace over", f"after {took:.1f} s", returned, None)
        if not GRACE - self._speed <= took <= GRACE + 2 * self._speed:
            raise NotSeen(f"a grace of {GRACE:g} s (it took {took:.1f} s)")
        self._see_lock(mark, before, "locked-again")
        desk.home.wait_for_line("dormel.log", "[reblock] next bypass requires 60s hold", 3, lines)

    def kill(self):
        """kill -9: the scheduler brings the lock back, with new keys."""
        desk = self.desk
        self._debug_mark = len(desk.home.log("debug.log"))
        mark, before, keys = desk.watcher.mark(), self.pid, self.keys
        killed = time.monotonic()
        self.bundle.kill(before)
        self._report("killed", f"kill -9 {before}", killed, None)
        self.pid = self.bundle.wait_for_scheduled(5, other_than=before)
        found = time.monotonic()
        if found - killed > 2.5:
            raise NotSeen(f"a restart within 2 s (it took {found - killed:.2f} s)")
        self._report("started again", f"process {self.pid}", found, None)
        self._see_lock(mark, keys, "after-the-kill")

    def end(self):
        """The hours end: the program leaves with status 0 and is not started again."""
        desk = self.desk
        lines = len(desk.home.log("dormel.log"))
        desk.home.end_the_hours()
        ended = time.monotonic()
        self._report("the hours end", "the settings say so", ended, None)
        gone = f"process {self.pid} ends"
        until(gone, lambda: self.bundle.scheduled() is None, 32, every=0.02)
        at = time.monotonic()
        until("the desktop is back", lambda: not desk.eyes.covered({self.pid}) and not desk.eyes.dark(), 3)
        line = desk.home.wait_for_line("dormel.log", lambda text: "Outside blocking hours. Force exiting." in text
                                       or "Blocking hours ended. Exiting cleanly." in text, 3, lines)[1]
        self._report("gone", line, at, "morning")
        # A job that ended with anything but 0 is started again after one second.
        quiet_until = time.monotonic() + 3
        while time.monotonic() < quiet_until:
            if self.bundle.scheduled() is not None:
                raise NotSeen("the program stays away after the hours")
            time.sleep(0.05)
        status = self.bundle.last_exit()
        if status not in (None, "exited 0"):
            raise NotSeen(f"exit status 0 (the scheduler saw: {status})")
        until("a key reaches the document", desk.keys_reach_the_document, 3)
        complaints = [line for line in desk.home.log("dormel.log") if line.startswith("Q")]
        if complaints:
            raise NotSeen(f"the log holds the program's own lines only, not {len(complaints)} like {complaints[0]}")
        self._report("exit status 0", "and not started again" if status else
                     "not started again (only a status of 0 does that)", time.monotonic(), None)

    # What the screens show.

    def _caps(self, monitors, bright, enough):
        """Enough bright pixels where the key caps stand, on every monitor."""
        for monitor in monitors:
            row = self.desk.eyes.rectangle(monitor.x + monitor.width // 2 - 280, monitor.y + monitor.height // 2 + 70,
                                           560, 100)
            count = row.brighter_than(bright)
            if count < enough:
                return No(f"{count} bright pixels where the keys stand on {monitor.name}")
        return True

    def _counts(self, pill):
        """White figures on the pill's dark ground."""
        shot = self.desk.eyes.rectangle(pill.x, pill.y, pill.width, pill.height)
        all_of_it, bright = pill.width * pill.height, shot.brighter_than(150)
        dark = all_of_it - shot.brighter_than(90)
        return dark > all_of_it // 4 and bright > 100 or No(f"{bright} bright and {dark} dark pixels of {all_of_it}")

    def _confirmation(self, monitors):
        """The message where the dial was, and no keys below it. Monitors that show it are taken from the list."""
        for monitor in list(monitors):
            x, y = monitor.x + monitor.width // 2, monitor.y + monitor.height // 2
            message = self.desk.eyes.rectangle(x - 280, y - 170, 560, 170).brighter_than(200)
            keys = self.desk.eyes.rectangle(x - 280, y + 70, 560, 100).brighter_than(60)
            if message < 500 or keys > 0:
                return No(f"{monitor.name}: {message} bright pixels of the message, {keys} of the keys")
            monitors.remove(monitor)
        return True
