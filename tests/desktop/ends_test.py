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

    def test_a_second_instance_leaves_the_first_alone(self):
        desk = self.desk()
        first = self.lock(desk)
        second = desk.bundle.run("--scheduled", within=10)
        said = [line for line in (second.stdout + second.stderr).split("\n") if line]
        self.saw(f"the second said {said} and exited {second.returncode}")
        self.assertEqual(second.returncode, 0)
        self.assertEqual(len(said), 1)
        self.assertIsNone(first.poll())
        self.assertTrue(desk.eyes.covered(first.pid))
        self.assertFalse(desk.keys_reach_the_document())

    def test_runs_that_do_not_lock(self):
        desk = self.desk()
        hours = {"onboardingComplete": True}
        table = (("not set up", {"onboardingComplete": None},
                  "Onboarding not complete — not blocking. Exiting."),
                 ("switched off", {**hours, "blockingEnabled": False},
                  "Dormel is disabled by the user — not blocking. Exiting."),
                 ("an empty span", {**hours, "blockStartHour": 5, "blockEndHour": 5},
                  "Outside blocking hours (5:00–5:00). Exiting."))
        for name, values, line in table:
            with self.subTest(name):
                desk.home.hours_around_now()
                desk.home.change_settings(**values)
                mark = desk.watcher.mark()
                done = desk.bundle.run("--scheduled", within=10)
                self.assertEqual((done.returncode, done.stdout.split("\n")[-2]), (0, line))
                self.assertFalse(desk.watcher.since(mark, "map", "grab"), "nothing shows before a check fails")
                desk.home.change_settings(blockingEnabled=None)

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

    def test_an_old_server(self):
        """Without RandR there is one screen, as large as the server's."""
        desk = self.desk(monitors=(), server_arguments=["-extension", "RANDR"])
        process = self.lock(desk)
        self.assertFalse(desk.keys_reach_the_document())
        self.assertIsNone(process.poll())


if __name__ == "__main__":
    unittest.main()
