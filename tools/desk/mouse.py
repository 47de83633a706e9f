"""A hand on the mouse, through XTEST."""

import time

from Xlib import X
from Xlib.ext import xtest

from .server import ServerClient


class Mouse(ServerClient):
    def move(self, x, y):
        xtest.fake_input(self._display, X.MotionNotify, x=x, y=y)
        self._display.sync()

    def press(self, button=1):
        xtest.fake_input(self._display, X.ButtonPress, button)
        self._display.sync()

    def release(self, button=1):
        xtest.fake_input(self._display, X.ButtonRelease, button)
        self._display.sync()

    def click(self, x, y, button=1):
        self.move(x, y)
        self.press(button)
        self.release(button)

    def drag(self, x, y, to_x, to_y, steps=12):
        """As a hand does it: in steps, some 10 ms apart, since window managers follow the motion."""
        self.move(x, y)
        self.press()
        for step in range(1, steps + 1):
            self.move(x + (to_x - x) * step // steps, y + (to_y - y) * step // steps)
            time.sleep(0.01)
        self.release()
