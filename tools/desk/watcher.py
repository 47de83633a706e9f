"""Hears what happens to windows, screens and the keyboard the moment the server says so, with the time.

It disturbs nothing: it only listens. The server's own answers to requests for the keyboard say when it was taken, so
that no trial grab gets in the way of the program's own. (Focus events of mode NotifyGrab go to the two windows that
lose and get the keys. A program that makes both and takes the keyboard within a millisecond has done so before anybody
else could ask for their events.) That it was let go shows in focus events: no window of a moment ago is concerned.
"""

import select
import threading
import time
from dataclasses import dataclass, field

from Xlib import X, error
from Xlib.ext import randr, record

from .wait import PATIENCE, NotSeen


@dataclass(frozen=True)
class Event:
    at: float
    kind: str  # map, unmap, destroy, create, configure, grab, ungrab, screens
    window: int = 0
    rectangle: tuple = field(default=())


class GrabRecord(threading.Thread):
    """Calls `on_grab` for every answer of the server's that gives somebody the keyboard."""

    GRAB_KEYBOARD = 31
    REPLY, SUCCESS, LENGTH = 1, 0, 32

    def __init__(self, server, on_grab):
        super().__init__(name="grabs", daemon=True)
        self._on_grab, self._began = on_grab, threading.Event()
        self._display, self._control = server.open(), server.open()
        nothing = {"core_requests": (0, 0), "core_replies": (0, 0), "ext_requests": (0, 0, 0, 0),
                   "ext_replies": (0, 0, 0, 0), "delivered_events": (0, 0), "device_events": (0, 0), "errors": (0, 0),
                   "client_started": False, "client_died": False}
        grabs = {**nothing, "core_replies": (self.GRAB_KEYBOARD, self.GRAB_KEYBOARD)}
        self._context = self._control.record_create_context(0, [record.AllClients], [grabs])
        self._control.sync()
        self.start()
        if not self._began.wait(5):
            raise NotSeen("the server records")

    def run(self):
        try:
            self._display.record_enable_context(self._context, self._take)
        except (error.ConnectionClosedError, OSError, ValueError):
            pass

    def _take(self, part):
        if part.category == record.StartOfData:
            self._began.set()
        elif part.category == record.FromServer:
            now = time.monotonic()
            for at in range(0, len(part.data), self.LENGTH):
                if part.data[at] == self.REPLY and part.data[at + 1] == self.SUCCESS:
                    self._on_grab(now)

    def close(self):
        try:
            self._control.record_disable_context(self._context)
            self._control.sync()
            self.join(2)
            self._control.close()
            self._display.close()
        except Exception:
            pass


class Watcher:
    def __init__(self, server):
        self.events = []
        self.lost = None  # when the server went away
        self._changed = threading.Condition()
        self._display = server.open()
        self._display.set_error_handler(lambda *_: None)  # windows vanish while they are being looked at
        root = self._display.screen().root
        self._root = root
        root.change_attributes(event_mask=X.SubstructureNotifyMask | X.FocusChangeMask)
        self._has_screens = self._display.has_extension("RANDR")
        if self._has_screens:
            root.xrandr_select_input(randr.RRScreenChangeNotifyMask | randr.RRCrtcChangeNotifyMask)
        for window in root.query_tree().children:
            window.change_attributes(event_mask=X.FocusChangeMask)
        self._display.sync()
        self._grabs = GrabRecord(server, lambda at: self._note(Event(at, "grab")))
        self._closing = False
        self._thread = threading.Thread(target=self._run, name="watcher", daemon=True)
        self._thread.start()

    def _run(self):
        try:
            while not self._closing:
                if self._display.pending_events() == 0:
                    select.select([self._display.fileno()], [], [], 0.5)
                    if self._display.pending_events() == 0:
                        continue
                while self._display.pending_events():
                    self._take(self._display.next_event(), time.monotonic())
                self._display.flush()
        except (error.ConnectionClosedError, OSError, ValueError):
            with self._changed:
                self.lost = time.monotonic()
                self._changed.notify_all()

    def _take(self, event, now):
        kinds = {X.MapNotify: "map", X.UnmapNotify: "unmap", X.DestroyNotify: "destroy", X.CreateNotify: "create",
                 X.ConfigureNotify: "configure"}
        if event.type in kinds:
            rectangle = ()
            if event.type in (X.ConfigureNotify, X.CreateNotify):
                rectangle = (event.x, event.y, event.width, event.height)
            if event.type == X.CreateNotify:
                event.window.change_attributes(event_mask=X.FocusChangeMask)
                self._display.flush()
            self._note(Event(now, kinds[event.type], event.window.id, rectangle))
        elif event.type in (X.FocusIn, X.FocusOut) and event.mode == X.NotifyUngrab:
            self._note(Event(now, "ungrab", event.window.id))
        elif self._has_screens and event.type >= self._display.extension_event.ScreenChangeNotify:
            self._note(Event(now, "screens"))

    def _note(self, event):
        with self._changed:
            self.events.append(event)
            self._changed.notify_all()

    def mark(self):
        """A place in the record, to look only at what comes later."""
        with self._changed:
            return len(self.events)

    def since(self, mark, *kinds):
        with self._changed:
            return [e for e in self.events[mark:] if not kinds or e.kind in kinds]

    def first(self, kind, since, within, what=None):
        """The first event of the kind after the mark; waits for it."""
        deadline = time.monotonic() + within * PATIENCE
        with self._changed:
            while True:
                for event in self.events[since:]:
                    if event.kind == kind:
                        return event
                left = deadline - time.monotonic()
                if left <= 0 or self.lost is not None:
                    raise NotSeen(f"not seen within {within:g} s: {what or kind}")
                self._changed.wait(left)

    def covered_at(self, monitors, since, pid_of=None, pids=()):
        """When windows mapped after the mark first covered every monitor; None if they do not yet.

        With pid_of and pids only windows of those processes count.
        """
        shapes, mapped, seen, ours = {}, set(), set(), {}

        def counts(window):
            if pid_of is not None and window not in ours:
                ours[window] = pid_of(window) in pids
            return pid_of is None or ours[window]

        for event in self.since(since):
            if event.kind in ("create", "configure"):
                shapes[event.window] = event.rectangle
            elif event.kind == "map":
                mapped.add(event.window)
            elif event.kind in ("unmap", "destroy"):
                mapped.discard(event.window)
            else:
                continue
            for monitor in monitors:
                if any(window in shapes and monitor.contains(*shapes[window]) and counts(window)
                       for window in mapped):
                    seen.add(monitor.name)
            if len(seen) == len(monitors):
                return event.at
        return None

    def gaps(self, monitor, since, standing):
        """The moments after the mark from which on no window of a client covered the monitor, as the server tells it.

        standing: the client's windows that were on the screen at the mark, as eyes.TopWindow.
        """
        client = ~0x1FFFFF
        clients = {window.id & client for window in standing}
        shapes = {window.id: window.rectangle for window in standing}
        mapped, gaps, was_covered = set(shapes), [], True
        for event in self.since(since):
            if event.window & client not in clients:
                continue
            if event.rectangle:
                shapes[event.window] = event.rectangle
            if event.kind == "map":
                mapped.add(event.window)
            elif event.kind in ("unmap", "destroy"):
                mapped.discard(event.window)
            covered = any(window in shapes and monitor.contains(*shapes[window]) for window in mapped)
            if was_covered and not covered:
                gaps.append(event.at)
            was_covered = covered
        return gaps

    def close(self):
        self._grabs.close()
        self._closing = True
        self._thread.join(2)
        try:
            self._display.close()
        except Exception:
            pass
