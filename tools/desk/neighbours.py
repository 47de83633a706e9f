"""Other programs on the desktop, some of them rude. Each runs as a process of its own.

    grabber       holds the keyboard, as an open menu does; "release" lets go, "take" takes it again
    raiser        a bright window that puts itself on top every 100 ms
    notification  a bright override-redirect bubble in the corner of the main monitor, shown on "show"
    fullscreen    a bright window over the whole main monitor that asks for the fullscreen state, shown on "show"

They obey lines on standard input, answer each with a line, and end when it closes.
"""

import os
import select
import subprocess
import sys
import time

from Xlib import X, Xatom
from Xlib import display as xdisplay

BRIGHT = 0xFF7A1A  # nothing of the program has this colour


class Neighbour:
    def __init__(self, server, kind):
        self._process = subprocess.Popen([sys.executable, os.path.abspath(__file__), kind],
                                         env={**os.environ, **server.environment()}, stdin=subprocess.PIPE,
                                         stdout=subprocess.PIPE, text=True, bufsize=1)
        self.pid = self._process.pid
        self.said = self._answer(10)

    def tell(self, word, within=10):
        self._process.stdin.write(word + "\n")
        self._process.stdin.flush()
        return self._answer(within)

    def _answer(self, within):
        if not select.select([self._process.stdout], [], [], within)[0]:
            raise AssertionError("the neighbour does not answer")
        return self._process.stdout.readline().strip()

    def end(self):
        if self._process.poll() is None:
            self._process.stdin.close()
            try:
                self._process.wait(5)
            except subprocess.TimeoutExpired:
                self._process.kill()
                self._process.wait()
        self._process.stdout.close()


def _bright_window(display, x, y, width, height, override):
    screen = display.screen()
    return screen.root.create_window(x, y, width, height, 0, screen.root_depth, X.InputOutput, X.CopyFromParent,
                                     background_pixel=BRIGHT, override_redirect=override)


def _say(text):
    print(text, flush=True)


def _main_monitor(display):
    monitors = display.screen().root.xrandr_get_monitors().monitors
    return next((m for m in monitors if m.primary), monitors[0])


def _grabber(display):
    root = display.screen().root

    def take():
        while True:
            status = root.grab_keyboard(True, X.GrabModeAsync, X.GrabModeAsync, X.CurrentTime)
            display.sync()
            if status == X.GrabSuccess:
                return
            time.sleep(0.002)

    take()
    _say("holding")
    for line in sys.stdin:
        if line.strip() == "release":
            display.ungrab_keyboard(X.CurrentTime)
            display.sync()
            _say("released")
        elif line.strip() == "take":
            take()
            _say("holding")


def _raiser(display):
    monitor = _main_monitor(display)
    window = _bright_window(display, monitor.x + 300, monitor.y + 200, 500, 400, True)
    window.map()
    display.sync()
    _say("up")
    while not select.select([sys.stdin], [], [], 0.1)[0]:
        window.configure(stack_mode=X.Above)
        display.sync()


def _shown_later(display, fullscreen):
    monitor = _main_monitor(display)
    if fullscreen:
        window = _bright_window(display, monitor.x, monitor.y, monitor.width_in_pixels, monitor.height_in_pixels,
                                False)
        window.change_property(display.intern_atom("_NET_WM_STATE"), Xatom.ATOM, 32,
                               [display.intern_atom("_NET_WM_STATE_FULLSCREEN")])
    else:
        window = _bright_window(display, monitor.x + monitor.width_in_pixels - 380, monitor.y + 40, 340, 120, True)
    _say("ready")
    for line in sys.stdin:
        if line.strip() == "show":
            window.map()
            window.configure(stack_mode=X.Above)
        elif line.strip() == "hide":
            window.unmap()
        display.sync()
        _say(line.strip())


if __name__ == "__main__":
    connection = xdisplay.Display()
    {"grabber": _grabber, "raiser": _raiser, "notification": lambda d: _shown_later(d, False),
     "fullscreen": lambda d: _shown_later(d, True)}[sys.argv[1]](connection)
