"""A whole night of the unmodified program, with its clocks running ten times faster than ours."""

import os
import time
import unittest

from case import DesktopCase
from desk.night import FIRST_HOLD, LATER_HOLD, Night

SPEED = 10


class WholeNight(DesktopCase):
    def test_thirty_seconds_five_minutes_sixty_seconds_morning(self):
        desk = self.desk()
        began = self.clock()
        night = Night(desk, desk.bundle,
                      lambda title, detail, at, _: self.saw(f"{SPEED * (at - began):6.1f} s  {title:24}{detail}"), SPEED)
        desk.home.hours_around_now(onboardingComplete=True)
        fast_clock = os.path.join(desk.bundle.build, "tests", "desktop", "libfast_clock.so")
        self.assertTrue(os.path.exists(fast_clock), f"{fast_clock} is built")
        mark = desk.watcher.mark()
        night.began = self.clock()
        process = self.start(desk, "--scheduled",
                             environment={"LD_PRELOAD": fast_clock, "FAST_CLOCK":
                                          f"{SPEED} {time.clock_gettime_ns(time.CLOCK_MONOTONIC)} {time.time_ns()}"})
        night.see_lock(process.pid, mark)
        night.hold(FIRST_HOLD)
        self.assertEqual(night.unlock(), 1)
        night.wait_out_the_grace()
        night.hold(LATER_HOLD)
        self.assertEqual(night.unlock(), 2)
        night.wait_out_the_grace()
        desk.home.end_the_hours()
        self.assertEqual(process.wait(10), 0)
        self.saw("the hours ended: exit status 0")


if __name__ == "__main__":
    unittest.main()
