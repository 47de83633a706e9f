"""The program as the user opens it: one window of the desktop's, its menu and alerts, and the rehearsal behind it."""

import time
import unittest

from case import ESCAPE, DesktopCase, evdev_of_label, until
from desk.menu_bar import MenuBar

LEFT_CTRL, Q = 29, 16

# Places in the window, from its top left corner.
CLOSE = (438, 22)
MINIMIZE = (406, 22)
HEADER = (60, 80)


class WindowTest(DesktopCase):
    def open(self, surroundings=lambda desk: None, **options):
        desk = self.desk(windows="openbox", **options)
        hour = time.localtime().tm_hour
        desk.home.change_settings(onboardingComplete=True, blockStartHour=(hour + 6) % 24,
                                  blockEndHour=(hour + 9) % 24, debugLoggingEnabled=True)
        begun = self.clock()
        process = self.start(desk, environment=surroundings(desk))
        window = self.window_of(desk, process)
        self.saw(f"window after {1000 * (self.clock() - begun):.0f} ms")
        until("it has the focus", lambda: desk.clients.active() == window.id, 5)
        # Arming the scheduler comes right after showing the window; only then it listens.
        desk.home.wait_for_line("dormel.log", "Self-heal: LaunchAgent not loaded — re-armed.", 15)
        return desk, process, window

    @staticmethod
    def window_of(desk, process, title="Dormel"):
        return until(f"the window {title!r}",
                     lambda: next((c for c in desk.clients.of(process.pid) if c.title == title), None), 10)

    @staticmethod
    def link(reader):
        """What starts the rehearsal; further down than the window shows."""
        return until("the link", lambda: next((e for e in reader.elements() if e.name == "Rehearse the lock"), None), 5)

    def test_is_a_good_citizen_of_the_desktop(self):
        desk, process, window = self.open(compositor=True)
        self.assertEqual((window.width, window.height), (460, 660))
        self.assertEqual(window.names[0], desk.home.identifier)
        monitor = desk.eyes.monitors()[0]
        self.assertEqual((2 * window.x + 460, 2 * window.y + 660), (monitor.width, monitor.height), "centred")

        desk.mouse.drag(*window.at(*HEADER), *window.at(HEADER[0] - 150, HEADER[1] + 40))
        places = [window]

        def arrived():
            places.append(self.window_of(desk, process))
            return places[-1] if places[-1] == places[-2] and places[-1].x < window.x - 50 else None
        moved = until("it follows the mouse", arrived, 3, every=0.1)
        self.saw(f"dragged by {moved.x - window.x}, {moved.y - window.y}")

        desk.mouse.click(*moved.at(*MINIMIZE))
        until("it is minimised", lambda: self.window_of(desk, process).minimized, 3)
        second = desk.bundle.run()
        self.assertEqual(second.returncode, 0)
        until("opening it again brings it back", lambda: not self.window_of(desk, process).minimized
              and desk.clients.active() == window.id and desk.clients.stacking()[-1] == window.id, 3)

        desk.mouse.click(*moved.at(*CLOSE))
        self.assertEqual(process.wait(5), 0)

    def test_grows_with_the_desktops_scale_as_far_as_there_is_room(self):
        for scale, size in ((1.25, (575, 825)), (1.5, (690, 990)), (2, (920, 1080))):
            with self.subTest(scale):
                desk, _, window = self.open(scale=scale)
                self.assertEqual((window.width, window.height), size)
                desk.close()

    def test_its_menu_is_in_the_desktops_menu_bar(self):
        bars = []

        def bar(desk):
            bars.append(MenuBar(desk))
            self.addCleanup(bars[0].close)
            return bars[0].environment()

        desk, process, window = self.open(surroundings=bar)
        menus = bars[0].titles(window.id)
        self.saw(f"{menus}")
        self.assertEqual(list(menus), ["Dormel", "Edit", "Window"])
        self.assertEqual(menus["Dormel"], ["About Dormel", "-", "Hide Dormel", "Hide Others", "Show All", "-",
                                           "Quit Dormel"])
        self.assertEqual([item for item in menus["Edit"] if item != "-" and not item.startswith("(")], [],
                         "nothing here can be edited")
        self.assertEqual(menus["Window"], ["Close", "Minimize", "Dormel"])

        bars[0].choose(window.id, "Hide Others")
        until("the document is out of sight", lambda: not desk.clients.is_shown(desk.witness.window.id), 3)
        self.assertFalse(self.window_of(desk, process).minimized)
        bars[0].choose(window.id, "Show All")
        until("the document is back", lambda: desk.clients.is_shown(desk.witness.window.id), 3)

        bars[0].choose(window.id, "About Dormel")
        about = self.window_of(desk, process, "About Dormel")
        self.assertEqual(about.belongs_to, window.id)
        desk.keyboard.tap(ESCAPE)
        until("the panel is gone", lambda: len(desk.clients.of(process.pid)) == 1, 3)

        bars[0].choose(window.id, "Quit Dormel")
        self.assertEqual(process.wait(5), 0)

    def test_a_test_run_is_left_at_any_moment(self):
        readers = []

        def reader(desk):
            readers.append(self.reader(desk))
            return readers[0].environment()

        desk, process, window = self.open(surroundings=reader)
        readers[0].press(self.link(readers[0]))
        until("every screen is covered", lambda: desk.eyes.covered(process.pid), 5)
        desk.home.wait_for_line("debug.log", "═══ TEST START", 3)
        self.assertFalse(desk.keys_reach_the_document(), "the keyboard is taken")
        desk.keyboard.tap(ESCAPE)
        until("the screens are free", lambda: not desk.eyes.covered(process.pid), 3)
        until("the window has the focus again", lambda: desk.clients.active() == window.id, 3)

        # Through the grace period, where no tap runs: the window itself gets the key.
        mark = len(desk.home.log("debug.log"))
        readers[0].press(self.link(readers[0]))
        until("every screen is covered again", lambda: desk.eyes.covered(process.pid), 5)
        keys = until("the keys are drawn", lambda: desk.home.drawn_keys(mark), 5)
        desk.keyboard.press(*map(evdev_of_label, keys))
        desk.home.wait_for_line("debug.log", "✔", 8, mark)
        desk.keyboard.let_go()
        until("the screens are free again", lambda: not desk.eyes.covered(process.pid), 8)
        until("the window has the focus", lambda: desk.clients.active() == window.id, 3)
        desk.keyboard.tap(ESCAPE)
        desk.home.wait_for_line("debug.log", "═══ TEST CANCELLED ═══", 3, mark)
        until("the pill is gone", lambda: [w for w in desk.eyes.windows_of(process.pid) if w.override] == [], 3)
        desk.keyboard.chord(LEFT_CTRL, Q)
        self.assertEqual(process.wait(5), 0)


if __name__ == "__main__":
    unittest.main()
