"""The picture in the middle of a locked screen, and who draws it."""

import os
import time

from . import processes
from .wait import until

# Painters that are none, to be put in the place of the bundle's: each a whole program.
RUBBISH = """#!/usr/bin/python3
import os, socket, time
guard = socket.socket(fileno=3)
guard.setblocking(True)
for length in range(1, 3000, 7):
    guard.send(os.urandom(length))
    time.sleep(0.05)
"""
SILENT = """#!/bin/sh
exec sleep 1000
"""
WITHOUT_MEMORY = """#!/bin/sh
ulimit -v 60000
exec "$0.real"
"""


def put_in_place(bundle, program):
    """Has the bundle's painter be that program from its next start on."""
    path = os.path.join(bundle.path, "Contents", "Helpers", "paint")
    if not os.path.exists(path + ".real"):
        os.rename(path, path + ".real")
    with open(path + ".new", "w", encoding="utf-8") as file:
        file.write(program)
    os.chmod(path + ".new", 0o755)
    os.rename(path + ".new", path)


class Middle:
    """What shows in the middle of the main screen of a locked desk."""

    def __init__(self, desk, process):
        self.desk, self.process = desk, process
        main = desk.eyes.primary()
        self._place = main.x + main.width // 2 - 230, main.y + main.height // 2 - 270, 460, 540

    def look(self):
        return self.desk.eyes.rectangle(*self._place).data

    def has_text(self):
        return self.desk.eyes.rectangle(*self._place).brighter_than(90) > 300

    def painter(self):
        return processes.painter_of(self.process.pid)

    def wait_for_painter(self, other_than=None, limit=10):
        def found():
            painter = self.painter()
            return painter if painter != other_than else None
        return until("a painter runs", found, limit, every=0.002)

    def back_after(self, act, limit):
        """While the picture moves (a hold runs): how long after `act` on the painter another one's moves."""
        before = self.painter()
        act(before)
        began = time.monotonic()
        self.wait_for_painter(before, limit)
        still = self.look()
        until("the picture moves again", lambda: self.look() != still, limit, every=0.002)
        return time.monotonic() - began
