"""Ways around the lock on a Wayland compositor, each tried on the real program: tests/bypass/run --desktop NAME."""

import os
import shutil
import signal
import subprocess
import time

from .. import processes
from ..bundle import Bundle
from ..keyboard import evdev_of_label
from ..wait import until
from .desk import WaylandDesk
from .wire import Connection
from .witness import Overlay, Witness

ALT, CTRL, SHIFT, SUPER, TAB = 56, 29, 42, 125, 15
WAYS = {}


class Fault(Exception):
    """A promise that was not kept."""


class Left(Exception):
    """It cannot be tried here."""


def promise(kept, what):
    if not kept:
        raise Fault(what)


class Locked:
    """A desktop that is locked by a scheduled run; `armed`: by the scheduler, which brings it back."""

    def __init__(self, compositor, armed=False):
        self.compositor = compositor
        self.desk = WaylandDesk(compositor)
        self.desk.__enter__()
        try:
            self.desk.bundle = Bundle(self.desk).install()
            self._process = None
            self.desk.home.hours_around_now(onboardingComplete=True)
            if armed:
                self.desk.bundle.setup()
                self.desk.bundle.wait_for_scheduled()
            else:
                path = self.desk.home.log_path("dormel.log")
                os.makedirs(os.path.dirname(path), exist_ok=True)
                with open(path, "ab") as log:
                    self._process = self.desk.bundle.start("--scheduled", output=log)
            self.wait_for_lock(12)
        except BaseException:
            self.desk.close()
            raise

    def pid(self):
        return self._process.pid if self._process else self.desk.bundle.scheduled()

    def wait_for_lock(self, within):
        until("every screen is black", self.desk.eyes.dark, within)
        until("no key passes the lock", lambda: not self.desk.keys_reach_the_document(), within)

    def hides_the_document(self):
        """Nothing of its colour anywhere. (A sway whose locker died is all red.)"""
        paper = (232, 228, 220)
        shots = [self.desk.eyes.picture(monitor) for monitor in self.desk.eyes.monitors()]
        return not any(shot.pixel(x, y) == paper for shot in shots
                       for x in range(5, shot.width, 40) for y in range(5, shot.height, 40))

    def has_session_lock(self):
        return any("session lock" in line for line in self.desk.home.log("dormel.log"))

    def stands(self):
        """The lock is whole: alive, black, deaf, and the five keys count."""
        promise(self.pid() is not None and processes.alive(self.pid()),
                f"it ended: {self.desk.home.log('dormel.log')[-3:]}")
        self.wait_for_lock(6)
        keys = [evdev_of_label(label) for label in until("the keys are drawn", self.desk.home.drawn_keys, 5)]
        mark = len(self.desk.home.log("debug.log"))
        self.desk.keyboard.press(*keys)
        self.desk.home.wait_for_line("debug.log", "▶ all keys held", 3, mark)
        self.desk.keyboard.let_go()
        self.desk.home.wait_for_line("debug.log", "all released", 3, mark)

    def close(self):
        self.desk.close()


def way(desktops="sway labwc kwin", armed=False, ends=False):
    def register(function):
        WAYS[function.__name__] = (desktops.split(), armed, ends, function)
        return function
    return register


@way()
def shortcuts(lock):
    """Alt+Tab, Super, Alt+F4, print, volume, consoles, another workspace: nobody hears them, and nothing happens."""
    mark = lock.desk.witness.mark()
    for chord in ((ALT, TAB), (SUPER,), (SUPER, 32), (SUPER, 17), (ALT, 62), (CTRL, ALT, 1), (CTRL, ALT, 111), (99,),
                  (113,), (142,), (164,), (CTRL, ALT, 60), (ALT, 57)):
        lock.desk.keyboard.press(*chord)
        lock.desk.keyboard.let_go()
    promise(not lock.desk.witness.heard(mark), "the document heard a key")
    promise(lock.desk.eyes.dark(), "something is to be seen")


@way()
def windows_on_top(lock):
    """Windows that open over the whole screen: below, and without a key from a second after at the latest."""
    for _ in range(3):
        rival = Witness(lock.desk.server.path, waits_for_keyboard=False)
        try:
            until("the rival is open", lambda rival=rival: rival.shown, 5)
            until("it hears no key", lambda rival=rival: deaf(lock, rival), 1)
            promise(deaf(lock, rival), "a window that opened heard a key again")
            promise(lock.desk.eyes.dark(), "a window that opened is seen")
        finally:
            rival.close()


@way()
def another_overlay(lock):
    """A layer over everything that asks for the keyboard for itself: nobody hears a key 5 s later, while it is there."""
    rival = Overlay(lock.desk.server.path)
    try:
        until("no key passes", lambda: deaf(lock, rival), 6)
        promise(not lock.has_session_lock() or lock.desk.eyes.dark(), "it is seen")
    finally:
        rival.close()


def deaf(lock, rival):
    mark = rival.mark()
    lock.desk.keyboard.tap(67)
    time.sleep(0.2)
    return not rival.heard(mark)


@way("sway labwc")
def another_locker(lock):
    """A program that locks the session, too: it is told at once that the lock is taken."""
    if not lock.has_session_lock():
        raise Left("no session lock here")
    connection = Connection(lock.desk.server.path)
    answers = []
    asked = connection.bind("ext_session_lock_manager_v1").lock()
    asked.on["locked"] = lambda: answers.append("locked")
    asked.on["finished"] = lambda: answers.append("finished")
    until("an answer", lambda: connection.dispatch(0.01) and answers, 5)
    connection.close()
    promise(answers == ["finished"], f"it was told {answers}")


@way()
def mouse(lock):
    """The pointer is moved over everything and into the corners."""
    for dx, dy in ((-4000, -4000), (4000, 0), (0, 4000), (-4000, 0), (700, -500)):
        lock.desk.keyboard.move(dx, dy)


@way("sway labwc")
def scales(lock):
    """A monitor's scale is changed under the lock, to whole numbers and fractions."""
    for factor in (2, 1.5, 1.25, 1):
        lock.desk.server.scale(lock.desk.eyes.monitors()[0].name, factor)
        time.sleep(0.3)
        until(f"black to the edges at {factor}", lock.desk.eyes.dark, 3)


@way("sway labwc")
def monitors(lock):
    """Monitors are pulled and plugged, the main one, too; only plugged where none can be pulled."""
    pulls = lock.desk.server.pulls()
    for count, place in enumerate((1, 0), 1):
        if pulls:
            name = lock.desk.eyes.monitors()[place].name
            lock.desk.server.pull(name)
            until("it is gone", lambda name=name: name not in [m.name for m in lock.desk.eyes.monitors()], 3)
        lock.desk.server.plug(1280, 1024)
        there = 2 if pulls else 2 + count
        until("black", lambda there=there: len(lock.desk.eyes.monitors()) == there and lock.desk.eyes.dark(), 3)


@way("sway")
def the_compositors_own_commands(lock):
    """swaymsg: kill what has the focus, go to another workspace, full screen, start a program."""
    for command in ("kill", "workspace 7", "fullscreen enable", "focus output HEADLESS-2", "exec true"):
        try:
            lock.desk.server.message(command)
        except RuntimeError:
            pass  # refused is as well


@way()
def second_start(lock):
    """The program is started again: it ends, or waits."""
    again = lock.desk.bundle.start("--scheduled", output=subprocess.DEVNULL)
    time.sleep(2)
    lock.wait_for_lock(3)
    if again.poll() is None:
        again.kill()
    again.wait()


@way()
def frozen(lock):
    """SIGSTOP for five seconds: covered and deaf."""
    os.kill(lock.pid(), signal.SIGSTOP)
    try:
        for _ in range(5):
            time.sleep(1)
            promise(lock.desk.eyes.dark(), "something is to be seen")
            promise(not lock.desk.keys_reach_the_document(), "a key reached the document")
    finally:
        os.kill(lock.pid(), signal.SIGCONT)


@way("sway labwc")
def watcher_killed(lock):
    """What watches over the lock is killed: the lock stands."""
    for pid, command in processes.of_home(lock.desk.home.path).items():
        if command[0] == "dormel-watch":
            os.kill(pid, signal.SIGKILL)


@way()
def painter_killed(lock):
    """What paints is killed."""
    for pid, command in processes.of_home(lock.desk.home.path).items():
        if command[0].endswith("/paint"):
            os.kill(pid, signal.SIGKILL)


@way(armed=True)
def signals(lock):
    """TERM, INT, ABRT and KILL: back, or not even noticed; under a session lock nothing is seen and no key passes when it was killed."""
    for number in (signal.SIGKILL, signal.SIGTERM, signal.SIGINT, signal.SIGABRT, signal.SIGKILL):
        before = lock.pid()
        is_kept = number == signal.SIGKILL and lock.has_session_lock()
        os.kill(before, number)
        if is_kept:
            promise(lock.hides_the_document(), "the document is to be seen in between")
            promise(not lock.desk.keys_reach_the_document(), "a key reached the document in between")
        if number != signal.SIGKILL:
            time.sleep(0.3)
            if processes.alive(before):
                continue  # it minds no such signal
        lock.desk.bundle.wait_for_scheduled(10, other_than=before)
        lock.wait_for_lock(6)


@way(ends=True)
def deleted_and_killed(lock):
    """The program is deleted and killed: it leads out, at the latest 15 s later."""
    pid = lock.pid()
    shutil.rmtree(lock.desk.bundle.path)
    os.kill(pid, signal.SIGKILL)
    until("the desktop is free", lambda: lock.desk.keys_reach_the_document() and not lock.desk.eyes.dark(), 15)


def play(names, compositor):
    """Tries them one after the other; answers the names of those that failed."""
    broken, scene, kind = [], None, None
    for name in names:
        desktops, armed, ends, function = WAYS[name]
        if compositor not in desktops:
            print(f"{name:30} not tried: not on {compositor}", flush=True)
            continue
        verdict, started = "held", time.monotonic()
        try:
            if scene is not None and kind != armed:
                scene.close()
                scene = None
            scene, kind = scene or Locked(compositor, armed), armed
            function(scene)
            if not ends:
                scene.stands()
        except Left as left:
            verdict = f"not tried: {left}"
        except Exception as fault:  # whatever went wrong, the other ways are tried
            broken.append(name)
            verdict = f"FAILED: {type(fault).__name__}: {fault}"
        if (verdict != "held" or ends) and scene is not None:
            scene.close()
            scene = None
        print(f"{name:30} {verdict}, {time.monotonic() - started:.1f} s", flush=True)
    if scene is not None:
        scene.close()
    return broken
