"""Other programs that want the keyboard or the top of the screen."""

import unittest

from case import DesktopCase, until
from desk import Sampler, processes
from desk.shell import Shell


class KeyboardRivals(DesktopCase):
    def test_another_program_holds_the_keyboard_when_the_lock_comes(self):
        desk = self.desk()
        rival = desk.neighbour("grabber")
        process = self.lock(desk)
        self.saw("covered although another program holds the keyboard")
        self.press_the_keys(desk)
        self.saw("its five keys count all the same")
        desk.home.wait_for_line("debug.log", "holding 1.", 3)
        desk.keyboard.let_go()
        mark = desk.watcher.mark()
        rival.tell("release")
        released = self.clock()
        taken = desk.watcher.first("grab", mark, 5, "the lock takes the keyboard").at
        self.saw(f"keyboard taken {1000 * (taken - released):.0f} ms after the rival let go")
        self.assertLess(taken - released, 0.3)
        self.assertFalse(desk.keys_reach_the_document())
        self.assertIsNone(process.poll())


class ShellRivals(DesktopCase):
    def test_an_overview_in_which_no_window_would_be_seen(self):
        desk = self.desk()
        desk.start_bus()
        shell = Shell(f"unix:path={desk.home.runtime}/bus")
        self.addCleanup(shell.close)
        shell.open_overview()
        self.lock(desk)
        until("the overview that was open is closed", lambda: not shell.is_open, 2)
        shell.open_overview()
        until("the overview that opens is closed", lambda: not shell.is_open, 2)


class TopmostRivals(DesktopCase):
    def on_top(self, desk, process, within=2):
        until("the lock is on top", lambda: desk.eyes.covered(process.pid), within)

    def test_a_window_that_raises_itself_every_100_ms(self):
        for compositor in (False, True):
            with self.subTest(compositor=compositor):
                desk = self.desk(compositor=compositor)
                process = self.lock(desk)
                desk.neighbour("raiser")
                self.on_top(desk, process)
                main = desk.eyes.primary()
                points = [(main.x + 500, main.y + 300), (main.x + 320, main.y + 220)]

                def look():
                    before, began = processes.effort([process.pid]), self.clock()
                    with Sampler(desk.server, points) as sampler:
                        self.assert_stays(process, 4)
                    busy = 100 * processes.spent(before, processes.effort([process.pid]))[0] / (self.clock() - began)
                    self.saw(f"{'with' if compositor else 'without'} a compositor: {sampler}; {busy:.0f} % of a core")
                    self.assertGreater(sampler.looks, 200)
                    self.assertLess(busy, 30)
                    return sampler.longest

                self.assert_brief("it shows through", 0.08, look)
                self.on_top(desk, process)
                desk.close()

    def test_windows_that_map_later(self):
        for options in ({}, {"windows": "openbox", "compositor": True}):
            desk = self.desk(**options)
            process = self.lock(desk)
            for kind in ("notification", "fullscreen"):
                with self.subTest(kind=kind, **options):
                    neighbour = desk.neighbour(kind)
                    main = desk.eyes.primary()
                    points = [(main.x + main.width - 200, main.y + 100)]

                    def look():
                        with Sampler(desk.server, points) as sampler:
                            neighbour.tell("show")
                            self.assert_stays(process, 1)
                        self.saw(f"{kind}, {'openbox and picom' if options else 'bare server'}: {sampler}")
                        neighbour.tell("hide")
                        return sampler.longest

                    self.assert_brief("it shows through", 0.1, look)
                    neighbour.tell("show")
                    self.on_top(desk, process)
            self.assertTrue(desk.eyes.dark())
            desk.close()


if __name__ == "__main__":
    unittest.main()
