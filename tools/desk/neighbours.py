"""Other programs on the desktop, some of them rude. Each runs as a process of its own.

    grabber       holds the keyboard, as an open menu does; "release" lets go, "take" takes it again
    raiser        a bright window that puts itself on top every 100 ms
    notification  a bright override-redirect bubble in the corner of the main monitor, shown on "show"
    fullscreen    a bright window over the whole main monitor that asks for the fullscreen state, shown on "show"
    receiver      a window that takes dropped files, by the common protocol; "take", "refuse" and "fail" (it takes them
                  and cannot use them) say how; "asked" answers how often somebody has asked since, "heard" what it has got

They obey lines on standard input, answer each with a line, and end when it closes.
"""

import json
import os
import select
import subprocess
import sys
import time

from Xlib import X, Xatom
from Xlib import display as xdisplay
from Xlib.protocol import event as xevent

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


def _receiver(display):
    screen = display.screen()
    window = screen.root.create_window(1400, 700, 420, 300, 0, screen.root_depth, X.InputOutput, X.CopyFromParent,
                                       background_pixel=BRIGHT, event_mask=X.StructureNotifyMask)
    atom = display.intern_atom
    window.set_wm_normal_hints(flags=1, x=1400, y=700)
    window.change_property(atom("XdndAware"), Xatom.ATOM, 32, [5])
    window.map()
    while display.next_event().type != X.MapNotify:
        pass
    place = window.translate_coords(screen.root, 0, 0)
    _say(f"{210 - place.x} {150 - place.y}")
    mood, heard, action, asked = "take", [], X.NONE, 0

    def answer(source, kind, *data):
        display.create_resource_object("window", source).send_event(
            xevent.ClientMessage(window=source, client_type=atom(kind), data=(32, [window.id, *data])))

    def on_message(event):
        nonlocal action, asked
        kind, data = display.get_atom_name(event.client_type), event.data[1]
        if kind == "XdndPosition":
            action, asked = data[4], asked + 1
            answer(data[0], "XdndStatus", 0 if mood == "refuse" else 3, 0, 0, action)
        elif kind == "XdndDrop":
            window.convert_selection(atom("XdndSelection"), atom("text/uri-list"), atom("DROPPED"), data[2])
            on_message.source = data[0]

    def on_data():
        got = window.get_full_property(atom("DROPPED"), X.AnyPropertyType)
        heard.append([got.value.decode() if got else None, display.get_atom_name(action)])
        answer(on_message.source, "XdndFinished", int(mood == "take"), action, 0, 0)

    while True:
        display.flush()  # which may read events, so that the socket has nothing left to tell
        while display.pending_events():
            event = display.next_event()
            if event.type == X.ClientMessage:
                on_message(event)
            elif event.type == X.SelectionNotify:
                on_data()
            display.flush()
        if sys.stdin in select.select([sys.stdin, display.fileno()], [], [])[0]:
            word = sys.stdin.readline().strip()
            if word == "":
                return
            if word == "heard":
                _say(json.dumps(heard))
                heard.clear()
            elif word == "asked":
                _say(str(asked))
            else:
                mood, asked = word, 0
                _say(word)


if __name__ == "__main__":
    connection = xdisplay.Display()
    {"grabber": _grabber, "raiser": _raiser, "receiver": _receiver, "notification": lambda d: _shown_later(d, False),
     "fullscreen": lambda d: _shown_later(d, True)}[sys.argv[1]](connection)
