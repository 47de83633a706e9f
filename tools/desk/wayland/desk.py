"""A whole private desktop on a Wayland compositor, put up and taken down as one."""

import time

from ..eyes import Eyes, Picture, TopWindow
from ..private import PrivateDesk
from ..wait import No, until
from ..watcher import Event
from . import compositors
from .input import Keyboard
from .witness import Witness


class Looks:
    """What can be seen without asking anybody for windows: pictures of whole monitors."""

    edge_points = staticmethod(Eyes.edge_points)

    def __init__(self, compositor):
        self._compositor = compositor

    def monitors(self):
        return self._compositor.monitors()

    def primary(self):
        monitors = self.monitors()
        return next((m for m in monitors if m.primary), monitors[0])

    def picture(self, monitor):
        return self._compositor.picture(monitor)

    def rectangle(self, x, y, width, height):
        """Part of one monitor, at one pixel to the point."""
        monitor = next(m for m in self.monitors() if m.contains_point(x, y))
        shot, left = self.picture(monitor), x - monitor.x
        rows = range(y - monitor.y, y - monitor.y + height)
        return Picture(width, height, b"".join(
            shot.data[(row * shot.width + left) * 4:(row * shot.width + left + width) * 4] for row in rows))

    @staticmethod
    def pid_of(window):
        return 0

    def covered(self, pids, monitors=None):
        """Nobody tells whose a window is: what is black all around is covered."""
        return self.dark(monitors)

    def dark(self, monitors=None, level=12):
        """True when every monitor is black at its edges."""
        for monitor in monitors if monitors is not None else self.monitors():
            shot = self.picture(monitor)
            for x, y in self.edge_points(type(monitor)(monitor.name, 0, 0, shot.width, shot.height, False)):
                if max(shot.pixel(x, y)) > level:
                    return No(f"{monitor.name} at {x},{y} shows {shot.pixel(x, y)}")
        return True


class FocusRecord:
    """What the document hears of the keyboard, in the words of the X server's watcher. A mark is a moment."""

    def __init__(self, witness, eyes):
        self._witness, self._eyes = witness, eyes

    def mark(self):
        return time.monotonic()

    def since(self, mark, *kinds):
        events = [Event(at, "ungrab" if focused else "grab") for at, focused in list(self._witness.focus) if at >= mark]
        return [event for event in events if not kinds or event.kind in kinds]

    def first(self, kind, since, within, what=None):
        until(what or kind, lambda: self.since(since, kind), within)
        return self.since(since, kind)[0]

    def covered_at(self, monitors, since, pid_of=None, pids=()):
        return time.monotonic() if self._eyes.dark(monitors) else None


class WaylandDesk(PrivateDesk):
    """Monitors, a home, somebody working in a document, hands and eyes: as desk.Desk has them.

    compositor: "sway", "labwc" or "kwin". manager: as for every PrivateDesk.
    """

    def __init__(self, compositor, monitors=((1920, 1080), (1280, 1024)), manager=False, extra=None):
        super().__init__(manager, extra)
        self.server = compositors.make(compositor, self.folder, monitors)

    def _put_up(self):
        self.server.start()
        self.eyes = Looks(self.server)
        self.keyboard = self._keep(Keyboard(self.server))
        self.witness = self._keep(Witness(self.server.path))
        self.watcher = FocusRecord(self.witness, self.eyes)
        self._start_manager()

    def lock_covers(self, monitor, pid):
        return self.eyes.dark([monitor])

    def pill(self, pid):
        """What is dark in the upper right corner of the main screen, where the document is light; or None, also while
        all of it still clears."""
        main = self.eyes.primary()
        shot = self.eyes.rectangle(main.x + main.width // 2, main.y, main.width // 2, main.height // 4)
        dark = [(at % shot.width, at // shot.width) for at in range(shot.width * shot.height)
                if shot.data[at * 4 + 1] < 90]
        if not dark:
            return None
        (left, right), (top, bottom) = [(min(values), max(values)) for values in zip(*dark)]
        if left == 0 or bottom == shot.height - 1:
            return None
        return TopWindow(0, pid, main.x + main.width // 2 + left, main.y + top, right - left + 1, bottom - top + 1,
                         True)

    def keyboard_lost_at(self, since):
        """When the document lost the keyboard for the first time after the moment `since`; None if it did not."""
        return next((at for at, focused in self.witness.focus if at >= since and not focused), None)

    def close(self):
        self._stop_manager()
        self._sweep()
        self._close_all()
        self.server.stop()
        self._remove_folder()
