"""One night through the real scheduler: locked, lifted by real keys, killed, locked again, over."""

import unittest

from case import DesktopCase
from desk.night import FIRST_HOLD, Night


class NightTest(DesktopCase):
    def night(self, **options):
        desk = self.desk(**options)
        began = self.clock()
        return Night(desk, desk.bundle,
                     lambda title, detail, at, _: self.saw(f"{at - began:6.2f} s  {title:24}{detail}"))

    def test_a_night_on_the_user_manager(self):
        night = self.night(manager=True)
        self.assertIsNone(night.desk.manager_missing)
        night.arm()
        night.let_go_early()
        night.hold(FIRST_HOLD)
        self.assertEqual(night.unlock(), 1)
        night.kill()
        night.end()

    def test_the_built_in_supervisor_brings_the_lock_back(self):
        night = self.night(manager=False)
        night.arm()
        night.kill()
        night.kill()
        night.end()


if __name__ == "__main__":
    unittest.main()
