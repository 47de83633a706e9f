"""What draws the window: the graphics driver, where a real one answers, and never at the cost of a rehearsal."""

import os
import unittest

from case import DesktopCase, until
from desk.first_run import ByKeyboard, FirstRun


class GraphicsTest(DesktopCase):
    def demo(self, **variables):
        """Opens the first run at the permission, rehearses the lock, and leaves it; answers whether a driver drew."""
        desk = self.desk(windows="openbox", extra=variables)
        desk.home.change_settings(onboardingV2Beat=8, debugLoggingEnabled=True)
        reader = self.reader(desk)
        run = FirstRun(desk, desk.bundle, reader, ByKeyboard(desk, reader), lambda *_: None)
        begun = self.clock()
        run.open()
        process = self.started(run.process)
        window = self.in_front(desk, process, "Dormel")
        until("the window is drawn", lambda: (p := desk.eyes.rectangle(window.x, window.y, 900, 620))
              .pixel(20, 300) == (10, 10, 11) and p.brighter_than(150) > 200, 10)
        drawn = self.clock() - begun
        run.try_it()
        run.see("Better sleep, better everything.")
        with open(f"/proc/{process.pid}/smaps_rollup", encoding="ascii") as file:
            memory = next(int(line.split()[1]) for line in file if line.startswith("Pss:")) // 1000
        with open(f"/proc/{process.pid}/maps", encoding="ascii") as file:
            by_driver = "_dri.so" in file.read()
        self.saw(f"{variables or 'as it is'}: headline after {1000 * drawn:.0f} ms, {memory} MB, driver: {by_driver}")
        self.assertIsNone(process.poll())
        return by_driver

    def test_forced_either_way(self):
        self.assertTrue(self.demo(QSG_RHI_BACKEND="opengl"))
        self.assertFalse(self.demo(QT_QUICK_BACKEND="software"))

    @unittest.skipIf(os.path.exists("/dev/dri"), "there is a real driver here")
    def test_without_a_real_driver(self):
        self.assertFalse(self.demo())


if __name__ == "__main__":
    unittest.main()
