"""Nobody is left behind a session lock whose owner is gone. Needs a compositor that lets programs lock: sway 1.8, labwc."""

import os
import signal
import subprocess
import time
import unittest

from case import DesktopCase, until
from desk import Bundle, NotSeen, processes
from desk.wait import No
from desk.wayland import WaylandDesk
from desk.wayland.wire import Connection

COMPOSITOR = os.environ.get("DORMEL_COMPOSITOR", "sway")


class SessionLockTest(DesktopCase):
    def setUp(self):
        try:
            self.desk = WaylandDesk(COMPOSITOR)
            self.enterContext(self.desk)
        except NotSeen as why:
            self.skipTest(str(why))
        connection = Connection(self.desk.server.path)
        offered = connection.names("ext_session_lock_manager_v1")
        connection.close()
        if not offered:
            self.skipTest(f"this {COMPOSITOR} locks no session for others")
        self.desk.bundle = Bundle(self.desk).install()

    def watchers(self):
        """The processes that watch over a lock."""
        return [pid for pid, command in processes.of_home(self.desk.home.path).items() if command[0] == "dormel-watch"]

    def mark(self):
        return [n for n in os.listdir(self.desk.home.runtime) if n.endswith(".lock")]

    def locked(self):
        """A program that has locked the session, and the process that watches over it."""
        before = self.watchers()
        process = self.lock(self.desk)
        until("the session lock is up", self.refuses_others, 5)
        mine = [pid for pid in self.watchers() if pid not in before]
        self.assertEqual(len(mine), 1)
        return process, mine[0]

    def refuses_others(self):
        """Whether somebody has locked the session: another client's lock is finished at once."""
        connection = Connection(self.desk.server.path)
        try:
            lock = connection.bind("ext_session_lock_manager_v1").lock()
            answers = []
            lock.on["locked"] = lambda: answers.append("locked")
            lock.on["finished"] = lambda: answers.append("finished")
            until("an answer", lambda: connection.dispatch(0.01) and answers, 5)
            if answers[0] == "locked":
                lock.unlock_and_destroy()
                connection.roundtrip()
            return answers[0] == "finished"
        finally:
            connection.close()

    def drawn_for_good(self, mark):
        """The keys that a start asks for: the first ones it draws may be those of the lock before."""
        keys = self.desk.home.drawn_keys(mark)
        time.sleep(0.3)
        return keys and keys == self.desk.home.drawn_keys(mark)

    def pictures_are_centred(self):
        lit = bytes(level > 60 for level in range(256))
        for monitor in self.desk.eyes.monitors():
            shot = self.desk.eyes.picture(monitor)
            rows = [shot.data[at + 1:at + shot.width * 4:4].translate(lit)
                    for at in range(0, len(shot.data), shot.width * 16)]
            edges = [(row.index(1), row.rindex(1)) for row in rows if 1 in row]
            if not edges:
                return No(f"none on {monitor.name}")
            left, right = min(edge[0] for edge in edges), shot.width - 1 - max(edge[1] for edge in edges)
            if abs(left - right) > 40:
                return No(f"{monitor.name} has {left} pixels left of it and {right} right of it")
        return True

    def is_free(self):
        return self.desk.keys_reach_the_document() and not self.desk.eyes.dark()

    def test_killed_and_started_again_shows_nothing_in_between(self):
        process, watcher = self.locked()
        process.kill()
        process.wait()
        self.assertFalse(self.desk.keys_reach_the_document())
        mark = len(self.desk.home.log("debug.log"))
        again = self.start(self.desk, "--scheduled")
        until("it has the lock again", lambda: any(pid != watcher for pid in self.watchers()), 5)
        until("it asks for keys of its own", lambda: self.drawn_for_good(mark), 5)
        self.press_the_keys(self.desk)
        self.desk.keyboard.let_go()
        time.sleep(12)  # longer than the first one's watcher waits
        self.assertIsNone(again.poll())
        self.assertFalse(self.desk.keys_reach_the_document())

    def test_killed_and_never_started_again(self):
        process, _ = self.locked()
        process.kill()
        process.wait()
        killed = self.clock()
        until("the desktop is free", self.is_free, 15, every=0.2)
        self.saw(f"free after {self.clock() - killed:.1f} s")
        self.assertEqual(self.mark(), [])

    def test_deleted_and_killed(self):
        process, _ = self.locked()
        subprocess.run(["rm", "-rf", self.desk.bundle.path], check=True)
        process.kill()
        process.wait()
        until("the desktop is free", self.is_free, 15, every=0.2)

    def test_a_start_that_has_nothing_to_lock_ends_the_lock(self):
        for change in ({"blockingEnabled": False}, None):
            with self.subTest(change):
                process, watcher = self.locked()
                for pid in (process.pid, watcher):  # both within a millisecond: nobody is left to end it
                    os.kill(pid, signal.SIGKILL)
                process.wait()
                self.assertFalse(self.desk.keys_reach_the_document())
                if change:
                    self.desk.home.change_settings(**change)
                else:
                    self.desk.home.end_the_hours()
                self.assertEqual(self.start(self.desk, "--scheduled").wait(10), 0)
                until("the desktop is free", self.is_free, 3)
                self.assertEqual(self.mark(), [])

    def test_uninstalled_over_another_terminal(self):
        process, _ = self.locked()
        process.kill()
        process.wait()
        self.desk.bundle.run("--uninstall")
        until("the desktop is free", self.is_free, 3)
        self.assertEqual(self.mark(), [])

    def test_the_end_of_the_hours_ends_the_lock(self):
        process, watcher = self.locked()
        self.desk.home.end_the_hours()
        self.assertEqual(process.wait(35), 0)
        until("the desktop is free", self.is_free, 3)
        until("nobody watches any more", lambda: watcher not in self.watchers(), 3)
        self.assertEqual(self.mark(), [])

    def test_monitors_come_and_go(self):
        self.locked()
        desk = self.desk
        first, second = (monitor.name for monitor in desk.eyes.monitors())
        for name in (second, first):  # the main one, too
            desk.server.pull(name)
            until(f"{name} is gone", lambda name=name: name not in [m.name for m in desk.eyes.monitors()], 3)
            desk.server.scale(desk.server.plug(1280, 1024), 1.25)
            until("every screen is black", lambda: len(desk.eyes.monitors()) == 2 and desk.eyes.dark(), 3)
            until("every picture is in the middle of its monitor", self.pictures_are_centred, 5)
            self.press_the_keys(desk)
            desk.keyboard.let_go()

    def test_somebody_elses_lock_is_waited_for(self):
        connection = Connection(self.desk.server.path)
        self.addCleanup(connection.close)
        lock = connection.bind("ext_session_lock_manager_v1").lock()
        locked = []
        lock.on["locked"] = lambda: locked.append(True)
        until("locked by another", lambda: connection.dispatch(0.01) and locked, 5)
        self.desk.home.hours_around_now(onboardingComplete=True)
        process = self.start(self.desk, "--scheduled")
        time.sleep(4)
        self.assertIsNone(process.poll())
        lock.unlock_and_destroy()
        connection.roundtrip()
        until("it locks then", lambda: self.desk.eyes.dark() and self.refuses_others(), 5)


if __name__ == "__main__":
    unittest.main()
