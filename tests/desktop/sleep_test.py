"""The machine goes to sleep and wakes up while the lock is on."""

import unittest

from case import DesktopCase, until
from desk import LoginManager, processes
from desk.wait import No


class SleepTest(DesktopCase):
    def desk_with_login_manager(self):
        desk = self.desk()
        manager = LoginManager(desk.folder)
        self.enterContext(manager)
        return desk, manager

    @staticmethod
    def bright_key_pixels(desk):
        """How much of the main screen is bright where the key caps stand, which is most of it when they are held."""
        main = desk.eyes.primary()
        return desk.eyes.rectangle(main.x + main.width // 2 - 280, main.y + main.height // 2 + 70, 560,
                                   100).brighter_than(200)

    def test_a_hold_does_not_last_through_sleep_nor_the_lock_past_the_hours(self):
        desk, manager = self.desk_with_login_manager()
        process = self.lock(desk, environment=manager.environment)
        self.press_the_keys(desk)
        until("the keys are lit", lambda: self.bright_key_pixels(desk) > 5000, 3)
        manager.say(True)
        until("nothing counts as held", lambda: self.bright_key_pixels(desk) < 500, 2)
        desk.home.end_the_hours()
        manager.say(False)
        # Without the waking it would be the watchdog's turn, which has a line of its own.
        self.assertEqual(process.wait(5), 0)
        self.assertEqual(desk.home.log("dormel.log")[-1], "Woke outside blocking hours. Exiting.")
        until("the desktop is back", lambda: not desk.eyes.dark(), 2)

    def test_without_a_system_bus(self):
        """One line tells of it, and nothing is tried again and again; the same when the bus goes away later."""
        desk, manager = self.desk_with_login_manager()
        process = self.lock(desk, environment={"DBUS_SYSTEM_BUS_ADDRESS": "unix:path=/nobody/there"})
        lines = [line for line in desk.home.log("dormel.log") if "no system bus" in line]
        self.assertEqual(len(lines), 1)
        process.kill()
        process.wait()
        process = self.lock(desk, environment=manager.environment)
        manager.end_the_bus()

        def idle():
            before, began = processes.effort([process.pid]), self.clock()
            self.assert_stays(process, 1)
            seconds, wakeups = processes.spent(before, processes.effort([process.pid]))
            return seconds < 0.01 * (self.clock() - began) or No(f"{seconds:.3f} s busy, {wakeups} wake-ups")

        until("it rests", idle, 10)
        self.assertFalse(desk.keys_reach_the_document())


if __name__ == "__main__":
    unittest.main()
