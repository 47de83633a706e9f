"""The lock on headless Wayland compositors: a night, a killed program, focus and outputs taken away."""

import os
import unittest

from case import DesktopCase, until
from desk import Bundle
from desk.night import FIRST_HOLD, Night
from desk.wayland import WaylandDesk
from desk.wayland.witness import Witness

# The one that is named, or those that have no session lock here.
COMPOSITORS = tuple(os.environ.get("DORMEL_COMPOSITOR", "sway kwin").split())


class WaylandTest(DesktopCase):
    def wayland(self, compositor, **options):
        desk = WaylandDesk(compositor, **options)
        self.enterContext(desk)
        desk.bundle = Bundle(desk).install()
        return desk

    def night(self, compositor):
        if compositor not in COMPOSITORS:
            self.skipTest(f"{compositor} is not meant")
        desk = self.wayland(compositor)
        began = self.clock()
        night = Night(desk, desk.bundle,
                      lambda title, detail, at, _: self.saw(f"{at - began:6.2f} s  {title:24}{detail}"))
        night.arm()
        night.let_go_early()
        night.hold(FIRST_HOLD)
        self.assertEqual(night.unlock(), 1)
        night.kill()
        night.end()

    def test_a_night_on_sway(self):
        self.night("sway")

    def test_a_night_on_kwin(self):
        self.night("kwin")

    def test_a_window_that_opens_gets_no_key(self):
        for compositor in COMPOSITORS:
            with self.subTest(compositor):
                desk = self.wayland(compositor)
                self.lock(desk)
                rival = Witness(desk.server.path, waits_for_keyboard=False)
                self.addCleanup(rival.close)
                until("the rival is open", lambda: rival.shown, 5)

                def heard(mark, rival=rival):
                    return [key for key in rival.heard(mark) if key[1] == "press"]

                def settled(desk=desk, rival=rival):
                    mark = rival.mark()
                    return not desk.keys_reach_the_document() and not heard(mark)

                # A new window has the keyboard until it is taken back, which is what this compositor does; soon it has not.
                until("no key reaches the rival or the document", settled, 1)
                mark = rival.mark()
                self.press_the_keys(desk)
                desk.home.wait_for_line("debug.log", "holding 2.", 5)
                desk.keyboard.let_go()
                self.assertEqual(heard(mark), [])

    def test_shortcuts_do_nothing(self):
        """Alt+Tab goes to another workspace on this sway, and to another window on KWin."""
        for compositor in COMPOSITORS:
            with self.subTest(compositor):
                desk = self.wayland(compositor)
                self.lock(desk)
                for keys in ((56, 15), (125,), (125, 32), (56, 62)):  # Alt+Tab, Super, Super+D, Alt+F4
                    desk.keyboard.chord(*keys)
                self.assertTrue(desk.eyes.dark())
                self.assertFalse(desk.keys_reach_the_document())

    def test_a_new_output_is_covered(self):
        if "sway" not in COMPOSITORS:
            self.skipTest("no output can be added there")
        desk = self.wayland("sway")
        self.lock(desk)
        name = desk.server.plug(1280, 1024)
        until("every screen is black", desk.eyes.dark, 2)
        self.assertIn(name, [monitor.name for monitor in desk.eyes.monitors()])
        self.assertFalse(desk.keys_reach_the_document())


if __name__ == "__main__":
    unittest.main()
