"""The process that draws the lock is killed, crashes and stands still in the middle of a hold."""

import os
import signal
import time
import unittest

from case import DesktopCase, until
from desk import Sampler
from desk.picture import RUBBISH, SILENT, WITHOUT_MEMORY, Middle, put_in_place

# Seconds from a painter's end to the next one's picture: 0.3 are promised where the machine has time for it
# (bench/run), this much where it is busy with other tests. Of one that stands still nobody tells: up to 1.6 s go by
# before it counts as hanging.
BACK = 0.5
NOTICED = 2.2


class PainterTest(DesktopCase):
    def test_killed_crashed_and_stopped_in_a_hold(self):
        desk = self.desk()
        process = self.lock(desk)
        middle = Middle(desk, process)
        until("the keys are drawn", middle.has_text, 10)
        time.sleep(2.5)  # it is well by now
        lines = len(desk.home.log("debug.log"))
        with Sampler(desk.server, desk.eyes.edge_points(desk.eyes.primary())) as sampler:
            self.press_the_keys(desk)
            began = self.clock()
            for name, number, limit in (("killed", signal.SIGKILL, BACK), ("crashed", signal.SIGSEGV, BACK),
                                        ("stopped", signal.SIGSTOP, NOTICED)):
                def look(number=number):
                    time.sleep(2.5)
                    took = middle.back_after(lambda pid: os.kill(pid, number), 10)
                    self.assertFalse(desk.keys_reach_the_document())
                    return took
                self.assert_brief(f"{name}, the picture moves again", limit, look)
                self.saw(f"{name}: and back")
            desk.home.wait_for_line("debug.log", "✔ HOLD COMPLETE", 31 - (self.clock() - began), lines)
            self.saw(f"hold complete after {self.clock() - began:.1f} s; the main monitor meanwhile: {sampler}")
        self.assertEqual(sampler.exposures, 0)
        self.assertFalse([line for line in desk.home.log("debug.log")[lines:] if "⏸" in line or "⟳" in line])
        desk.keyboard.let_go()

    def test_without_any_painter_the_keys_can_be_read(self):
        for name, program in (("rubbish", RUBBISH), ("silent", SILENT), ("without memory", WITHOUT_MEMORY)):
            with self.subTest(name):
                desk = self.desk()
                put_in_place(desk.bundle, program)
                process = self.lock(desk)
                until("plain lines", Middle(desk, process).has_text, 3)
                self.press_the_keys(desk)
                self.assertFalse(desk.keys_reach_the_document())
                self.assert_stays(process, 1)
                desk.keyboard.let_go()
                process.kill()

    def test_it_can_do_nothing_but_draw(self):
        desk = self.desk()
        middle = Middle(desk, self.lock(desk))
        until("the keys are drawn", middle.has_text, 10)
        painter = middle.painter()
        status = {}
        with open(f"/proc/{painter}/status", encoding="utf-8") as file:
            for line in file:
                key, _, value = line.partition(":")
                status[key] = value.strip()
        self.assertEqual(status["NoNewPrivs"], "1")
        self.assertEqual(status["Seccomp"], "2")
        kinds = {os.readlink(f"/proc/{painter}/fd/{fd}").split(":")[0] for fd in os.listdir(f"/proc/{painter}/fd")}
        log = {kind for kind in kinds if kind.endswith("dormel.log")}  # its complaints
        self.assertEqual(kinds - log, {"/dev/null", "socket", "/memfd", "anon_inode"} & kinds)
        with open(f"/proc/{painter}/environ", "rb") as file:
            names = {entry.partition(b"=")[0] for entry in file.read().split(b"\0")}
        self.assertFalse(names & {b"DISPLAY", b"XAUTHORITY", b"DBUS_SESSION_BUS_ADDRESS"})
        self.assertFalse([line for line in desk.home.log("dormel.log") if "QStandardPaths" in line])
        # It goes with the process that shows what it draws.
        os.kill(middle.process.pid, signal.SIGKILL)
        until("the painter has ended", lambda: not os.path.exists(f"/proc/{painter}/fd/3"), 3)


if __name__ == "__main__":
    unittest.main()
