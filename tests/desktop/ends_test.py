"""How the program ends, and when it does not begin."""

import signal
import unittest

from case import DesktopCase, until


class EndsTest(DesktopCase):
    def test_the_server_dies(self):
        desk = self.desk()
        process = self.lock(desk)
        died = self.clock()
        desk.server.kill()
        status = process.wait(5)
        self.saw(f"exit status {status}, {1000 * (self.clock() - died):.0f} ms after the X server died")
        self.assertNotEqual(status, 0)

    def test_the_server_can_end_after_a_lock(self):
        desk = self.desk()
        process = self.lock(desk)
        process.kill()
        process.wait()
        asked = self.clock()
        desk.server.stop()
        self.saw(f"the X server ended {1000 * (self.clock() - asked):.0f} ms after it was asked to")
        self.assertLess(self.clock() - asked, 5)
        with open(desk.server.log, encoding="utf-8") as log:
            self.assertNotIn("Internal Error", log.read())

    def test_a_termination_signal_asks_for_a_new_start(self):
        desk = self.desk()
        process = self.lock(desk)
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(5), 1)
        self.assertIn("SIGTERM caught — respawning via non-zero exit.", desk.home.log("dormel.log"))
        until("the desktop is back", lambda: not desk.eyes.dark(), 2)

    def test_no_display(self):
        desk = self.desk()
        desk.home.hours_around_now(onboardingComplete=True)
        for name, environment in (("none", {"DISPLAY": ""}), ("nobody there", {"DISPLAY": ":4321"}),
                                  ("refused", {"XAUTHORITY": "/dev/null"})):
            with self.subTest(name):
                done = desk.bundle.run("--check-ax", environment=environment, within=10)
                self.saw(f"{name}: {done.stdout.strip()} {done.stderr.strip()}")
                self.assertEqual((done.returncode, done.stdout), (1, "AX: not trusted\n"))
                lines = len(desk.home.log("dormel.log"))
                process = self.start(desk, "--scheduled", environment=environment)
                desk.home.wait_for_line("dormel.log", "WARNING: Accessibility not granted", 10, lines)
                # It may wait for a display or ask to be started again, but neither crash nor call it a planned end.
                if process.poll() is not None:
                    self.assertGreater(process.returncode, 0)
                process.kill()
                process.wait()


if __name__ == "__main__":
    unittest.main()
