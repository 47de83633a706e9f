"""The first run in the real GNOME Shell: led to the extension, over the log-out that it takes, on to the end, and the
night after it."""

import os
import sys
import time
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools"))

from desk import Bundle  # noqa: E402
from desk.first_run import ByKeyboard, FirstRun, noon  # noqa: E402
from desk.gnome import GnomeDesk  # noqa: E402
from desk.gnome.extension import UUID  # noqa: E402
from desk.night import Night  # noqa: E402
from desk.screen_reader import ScreenReader  # noqa: E402
from desk.wait import until  # noqa: E402

PERMISSION_SCREEN = 8


class FirstRunTest(unittest.TestCase):
    def look(self, name):
        """A picture for whoever wants to look (DORMEL_PICTURES names a folder)."""
        folder = os.environ.get("DORMEL_PICTURES")
        if folder:
            time.sleep(3)  # until all of the screen has come up
            self.desk.eyes.picture(self.desk.server.monitors()[0]).save(os.path.join(folder, name + ".png"))

    def open(self):
        self.run_.open()
        self.addCleanup(lambda process=self.run_.process: (process.kill(), process.wait()))

    def live_in(self, zone):
        """A time zone, for this process and all that it starts."""
        before = os.environ.get("TZ")
        self.addCleanup(time.tzset)
        self.addCleanup(lambda: os.environ.pop("TZ") if before is None else os.environ.update(TZ=before))
        os.environ["TZ"] = zone
        time.tzset()

    def test_over_the_log_out_to_the_first_night(self):
        self.live_in(noon())
        self.desk = desk = self.enterContext(GnomeDesk(document=False))
        desk.home.change_settings(onboardingV2Beat=PERMISSION_SCREEN, debugLoggingEnabled=True)
        bundle = Bundle(desk).install()
        reader = ScreenReader(desk)
        self.addCleanup(reader.close)
        self.run_ = run = FirstRun(desk, bundle, reader, ByKeyboard(desk, reader), lambda *_: None)

        def says(part):
            until(f"the screen says {part!r}", lambda: any(part in e.name for e in reader.elements()), 10, every=0.2)

        self.open()
        says("by a small extension of it, which is not there yet")
        self.look("absent")
        self.assertFalse(reader.find("Continue"))
        run.hand.press("Switch On")
        says("is in its place. GNOME looks for new ones only when you log in")
        self.look("after-login")
        self.assertFalse(reader.find("Switch On"))
        self.assertIn(UUID, desk.server.get("org.gnome.shell", "enabled-extensions"))

        desk.server.kill()
        until("it ends with the session", lambda: run.process.poll() is not None, 10)
        desk.log_in_again()
        desk.sit_at_the_document()
        self.open()
        until("it goes on where it was, and may", lambda: reader.find("Continue"), 15)
        self.look("granted")
        run.try_it()
        run.read_the_facts()
        run.finish("Midnight", "midnight", 0)
        self.look("armed")
        run.process.kill()
        run.process.wait()

        night = Night(desk, bundle, lambda *_: None)
        night.arm()
        self.look("locked")


if __name__ == "__main__":
    unittest.main()
