"""The settings window as its users have it: by mouse, by what a screen reader tells, and by what the job scheduler knows
afterwards."""

import json
import time
import unittest

from case import ESCAPE, RETURN, TAB, DesktopCase, until
from desk.screen_reader import ScreenReader

WHEEL_DOWN = 5
LEFT_SHIFT = 42


class SettingsWindowTest(DesktopCase):
    def open(self, settings=None, **options):
        """The settings, at noon, of somebody who is locked from 22 to 6."""
        hour = int(time.time() // 3600)
        self.noon = hour * 3600  # the desk's time zone is one in which this hour is 12
        desk = self.desk(windows="openbox", extra={"TZ": f"NOON{hour % 24 - 12:+d}"}, **options)
        reader = ScreenReader(desk)
        self.addCleanup(reader.close)
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

    def test_your_nights_by_keyboard(self):
        desk = self.open()
        evening = [time.strftime("%Y-%m-%d", time.gmtime(self.noon - days * 86400)) for days in (1, 2)]
        desk.home.record("nights.json", json.dumps(
            [{"night": day, "firedAt": f"{day}T12:00:00.000Z", "idleSeconds": 5} for day in evening]))
        with open(desk.home.log_path("dormel-unlock.log"), "w", encoding="utf-8") as log:
            log.write(f"{evening[1]} 23:41:07 — unlocked (#1, held 30s)\n")

        # From its end, the link is the second control.
        desk.keyboard.press(LEFT_SHIFT)
        desk.keyboard.tap(TAB, TAB)
        desk.keyboard.let_go()
        until("the keyboard is at the link", lambda: self.reader.focused().name == "Your nights", 3)
        desk.keyboard.tap(RETURN)
        self.in_front(desk, self, "Your nights")
        table = self.reader.wait_for("The last ninety nights", 5, "table")
        nights = [e for e in self.reader.elements() if e.role == "cell"]
        self.assertEqual(len(nights), 90)
        self.assertTrue(nights[-1].name.endswith("not opened"), nights[-1])
        desk.keyboard.tap(desk.keyboard.place_of("Up"))
        focused = until("the keyboard is at a night", lambda: self.reader.focused().role == "cell"
                        and self.reader.focused(), 3)
        self.saw(f"{table.role}: {focused.name}")
        self.assertTrue(focused.name.endswith("opened once at 23:41"), focused)
        desk.keyboard.tap(ESCAPE)
        self.in_front(desk, self, "Dormel")
        until("the page is gone", lambda: len(desk.clients.of(self.pid)) == 1, 3)

    def test_by_mouse_alone(self):
        desk = self.open()
        desk.mouse.click(*self.control("Dormel", "check box").centre)
        self.setting("blockingEnabled", False)
        desk.mouse.click(*self.control("12-hour").centre)
        self.setting("use24HourClock", False)
        desk.mouse.click(*self.control("Lock at", "combo box").centre)
        desk.mouse.click(*self.control("1:00 AM", "list item").centre)
        self.setting("blockStartHour", 1)
        self.assertEqual(self.control("Lock at", "combo box").description, "1:00 AM")
        window = self.in_front(desk, self, "Dormel")
        link = lambda: self.controls()["push button", "Rehearse the lock"]  # noqa: E731
        self.assertGreater(link().centre[1], window.y + window.height, "below the edge")
        desk.mouse.move(*window.at(200, 400))
        for _ in range(12):
            desk.mouse.press(WHEEL_DOWN)
            desk.mouse.release(WHEEL_DOWN)
        until("the wheel brings it up", lambda: link().centre[1] < window.y + window.height - 20, 3)
        time.sleep(0.3)  # the page glides
        desk.mouse.click(*link().centre)
        until("every screen is covered", lambda: desk.eyes.covered(self.pid), 5)
        desk.keyboard.tap(ESCAPE)
        until("the screens are free", lambda: not desk.eyes.covered(self.pid), 3)

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
