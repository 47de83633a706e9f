"""The settings window by what a screen reader tells of it, and by what the job scheduler knows after a choice by mouse."""

import json
import time
import unittest

from case import DesktopCase, until


class SettingsWindowTest(DesktopCase):
    def open(self, settings=None, **options):
        """The settings, at noon, of somebody who is locked from 22 to 6."""
        hour = int(time.time() // 3600)
        self.noon = hour * 3600  # the desk's time zone is one in which this hour is 12
        desk = self.desk(windows="openbox", extra={"TZ": f"NOON{hour % 24 - 12:+d}"}, **options)
        reader = self.reader(desk)
        desk.home.change_settings(**{"onboardingComplete": True, "blockStartHour": 22, "blockEndHour": 6,
                                     "use24HourClock": True, "debugLoggingEnabled": True, **(settings or {})})
        process = self.start(desk, environment=reader.environment())
        self.in_front(desk, process, "Dormel")
        desk.home.wait_for_line("dormel.log", "Self-heal: LaunchAgent not loaded — re-armed.", 15)
        self.desk_, self.reader, self.pid = desk, reader, process.pid
        return desk

    def controls(self):
        """Everything that has a name, by role and name."""
        return {(e.role, e.name): e for e in reversed(self.reader.elements()) if e.name}

    def control(self, name, role=None):
        """A control that can be used."""
        return self.reader.wait_for(name, 5, role)

    def setting(self, key, value):
        until(f"{key} is {value}", lambda: self.desk_.home.settings().get(key) == value, 5)

    def test_a_screen_reader_tells_everything(self):
        self.open()
        self.control("Enabled. Locks your screen on schedule.")
        kinds = self.controls()
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

        # It operates the window, too, and hears what comes of it.
        self.reader.press(kinds["check box", "Dormel"])
        until("it is unchecked", lambda: "checked" not in self.control("Dormel", "check box").states, 3)
        self.control("Disabled. Dormel won't lock your screen.")
        self.setting("blockingEnabled", False)

    def test_the_scheduler_knows_the_hour_that_was_chosen(self):
        desk = self.open(manager=True)
        if desk.manager is None:
            self.skipTest(desk.manager_missing)

        def next_run():
            """Hours from the last midnight to the job's next run, as the user manager has it."""
            timers = json.loads(desk.manager.ask("list-timers", "--all", "--output=json"))
            runs = [timer["next"] / 1e6 for timer in timers if desk.home.identifier in timer["unit"] and timer["next"]]
            return runs and round((runs[0] - self.noon) / 3600 + 12, 3)
        self.assertEqual(next_run(), 22)
        desk.mouse.click(*self.control("Lock at", "combo box").centre)
        desk.mouse.click(*self.control("9:00 PM", "list item").centre)
        self.setting("blockStartHour", 21)
        self.setting("blockEndHour", 6)
        until("the next run is at 21:00 today", lambda: next_run() == 21, 5)
        self.saw(desk.manager.ask("list-timers", "--all", "--no-legend", f"{desk.home.identifier}*"))
        desk.home.wait_for_line("debug.log", "schedule updated → lock 9:00 PM", 3)


if __name__ == "__main__":
    unittest.main()
