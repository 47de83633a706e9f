"""The settings window by what a screen reader tells of it."""

import unittest

from case import DesktopCase, until
from desk import TAB
from desk.first_run import noon


class SettingsWindowTest(DesktopCase):
    def test_a_screen_reader_tells_everything(self):
        """Of somebody at noon who is locked from 22 to 6."""
        desk = self.desk(windows="openbox", extra={"TZ": noon()})
        reader = self.reader(desk)
        desk.home.change_settings(onboardingComplete=True, blockStartHour=22, blockEndHour=6, use24HourClock=True)
        process = self.start(desk, environment=reader.environment())
        self.in_front(desk, process, "Dormel")
        reader.wait_for("Enabled. Locks your screen on schedule.", 5)
        kinds = {(e.role, e.name): e for e in reversed(reader.elements()) if e.name}
        self.saw(", ".join(f"{role} {name!r}" for role, name in kinds))
        for role, name, states, absent in (
                ("check box", "Dormel", {"checked", "focusable", "enabled"}, {"focused"}),
                ("combo box", "Lock at", {"focusable", "enabled", "expandable"}, {"expanded"}),
                ("radio button", "24-hour", {"checked", "focusable"}, set()),
                ("radio button", "12-hour", {"focusable"}, {"checked"}),
                ("push button", "Rehearse the lock", {"focusable", "enabled"}, set())):
            control = kinds[role, name]
            self.assertLessEqual(states, control.states, (name, control))
            self.assertFalse(absent & control.states, (name, control))
        self.assertEqual(kinds["combo box", "Lock at"].description, "10:00 PM")
        for text in ("Enabled. Locks your screen on schedule.", "Locks 10:00 PM, unlocks 6:00 AM.",
                     "Screen lock. This desktop lets Dormel lock the screen.", "by Orvane",
                     "This copy doesn't look for updates. To update it, open a newer copy."):
            self.assertIn(("label", text), kinds)
        # The toolkit lists what is hidden, too.
        self.assertNotIn("showing", kinds["push button", "Check for Updates…"].states)

        # What Tab reaches is said, not only to be found by who asks.
        reader.listen(desk)
        desk.keyboard.tap(TAB)
        desk.keyboard.tap(TAB)
        until("the focus is said", lambda: reader.focus_said()[-2:] == ["Dormel", "Lock at"], 3)

        # It operates the window, too, and hears what comes of it.
        reader.press(kinds["check box", "Dormel"])
        until("it is unchecked", lambda: "checked" not in reader.wait_for("Dormel", 5, "check box").states, 3)
        reader.wait_for("Disabled. Dormel won't lock your screen.", 5)
        until("it is stored", lambda: desk.home.settings().get("blockingEnabled") is False, 5)


if __name__ == "__main__":
    unittest.main()
