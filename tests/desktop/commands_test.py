"""The command line: what it prints and answers, and what stands in its way."""

import os
import plistlib
import shutil
import subprocess
import unittest

from case import DesktopCase, until
from desk import IDENTIFIER


class CommandsTest(DesktopCase):
    def test_what_is_printed(self):
        desk = self.desk()
        table = ((["--version"], 0, "Dormel 1.0 (1)\n"),
                 (["--check-ax"], 0, "AX: TRUSTED\n"),
                 (["--uninstall"], 0, "Agent uninstalled, onboarding reset.\n"))
        for arguments, status, text in table:
            with self.subTest(arguments):
                done = desk.bundle.run(*arguments, within=10)
                self.assertEqual((done.returncode, done.stdout, done.stderr), (status, text, ""))
        self.assertIn("--scheduled", desk.bundle.run("--help").stdout)
        with open(desk.home.log_path("ax-probe.txt"), encoding="utf-8") as probe:
            self.assertEqual(probe.read(), f"TRUSTED {desk.bundle.path}\n")

    def arm_and_disarm(self, **options):
        desk = self.desk(**options)
        self.assertIsNone(desk.manager_missing)
        bundle, home = desk.bundle, desk.home
        home.change_settings(blockStartHour=21, blockEndHour=21)  # an empty span: what is started ends at once
        plist = os.path.join(home.path, "Library", "LaunchAgents", IDENTIFIER + ".plist")
        for word in ("armed", "armed again"):
            done = bundle.run("--setup")
            self.assertEqual((done.returncode, done.stdout, done.stderr),
                             (0, "Setup complete — agent installed.\n", ""), word)
            self.assertTrue(self.is_loaded(desk), word)
        self.assertIs(home.settings()["onboardingComplete"], True)
        with open(plist, "rb") as file:
            self.assertEqual(plistlib.load(file), {
                "Label": IDENTIFIER,
                "ProgramArguments": [bundle.program, "--scheduled"],
                "StartCalendarInterval": {"Hour": 21, "Minute": 0},
                "RunAtLoad": True,
                "KeepAlive": {"SuccessfulExit": False},
                "StandardOutPath": home.log_path("dormel.log"),
                "StandardErrorPath": home.log_path("dormel.log"),
                "AssociatedBundleIdentifiers": [IDENTIFIER]})
        home.wait_for_line("dormel.log", "Outside blocking hours (21:00–21:00). Exiting.", 10)
        done = bundle.run("--uninstall", "--setup")
        self.assertEqual((done.returncode, done.stdout), (0, "Setup complete — agent installed.\n"), "--setup comes first")
        for word in ("disarmed", "nothing to disarm"):
            done = bundle.run("--uninstall")
            self.assertEqual((done.returncode, done.stdout, done.stderr),
                             (0, "Agent uninstalled, onboarding reset.\n", ""), word)
            self.assertFalse(self.is_loaded(desk), word)
        self.assertFalse(os.path.exists(plist))
        self.assertIs(home.settings()["onboardingComplete"], False)

    def test_arming_and_disarming_on_the_user_manager(self):
        self.arm_and_disarm(manager=True)

    def test_arming_and_disarming_on_the_built_in_supervisor(self):
        self.arm_and_disarm(manager=False)

    @staticmethod
    def is_loaded(desk):
        if not os.path.exists(desk.bundle.launchctl):
            return False
        return subprocess.run([desk.bundle.launchctl, "print", f"gui/{os.getuid()}/{IDENTIFIER}"],
                              env=desk.environment(), capture_output=True, check=False).returncode == 0

    def test_arming_that_fails_says_why(self):
        desk = self.desk()
        folder = os.path.join(desk.home.path, "Library", "LaunchAgents")
        os.makedirs(os.path.dirname(folder))

        def refused(what, line):
            done = desk.bundle.run("--setup")
            self.saw(f"{what}: {done.stdout.splitlines()[0]}")
            self.assertEqual((done.returncode, done.stdout, done.stderr),
                             (1, f"{line}\nSetup FAILED — agent not installed.\n", ""), what)
            self.assertFalse(self.is_loaded(desk), what)

        with open(folder, "w", encoding="ascii"):
            pass
        refused("a file is where the folder should be", "AgentManager: failed to write plist: Not a directory")
        os.unlink(folder)
        os.makedirs(os.path.join(folder, IDENTIFIER + ".plist"))
        refused("a folder is where the file should be", "AgentManager: failed to write plist: Is a directory")
        shutil.rmtree(folder)
        aside = desk.bundle.launchctl + ".aside"
        os.rename(desk.bundle.launchctl, aside)
        failed = "AgentManager: bootstrap FAILED (exit {}) — agent NOT loaded, Dormel will not fire tonight"
        refused("the scheduler tool is missing", failed.format(-1))
        os.rename(aside, desk.bundle.launchctl)
        entry = os.path.join(desk.home.path, ".config", "autostart", IDENTIFIER + ".desktop")
        os.makedirs(os.path.dirname(entry), exist_ok=True)
        with open(entry, "w", encoding="ascii") as file:
            file.write("[Desktop Entry]\nType=Application\nName=Dormel\nHidden=true\n")
        refused("the user has switched it off", failed.format(125))

    def test_started_without_anywhere_to_write_to(self):
        """A closed or full output, or none at all, costs lines, not the lock."""
        desk = self.desk()
        desk.home.hours_around_now(onboardingComplete=True)
        read, broken = os.pipe()
        os.close(read)
        self.addCleanup(os.close, broken)
        full = os.open("/dev/full", os.O_WRONLY)
        self.addCleanup(os.close, full)
        program = [desk.bundle.program, "--scheduled"]
        table = (("a pipe without a reader", program, broken), ("a full device", program, full),
                 ("no descriptors", ["/bin/sh", "-c", 'exec "$0" "$1" <&- >&- 2>&-', *program], subprocess.DEVNULL))
        for name, command, output in table:
            with self.subTest(name):
                process = subprocess.Popen(command, env=desk.environment(), stdin=subprocess.DEVNULL, stdout=output,
                                           stderr=output)
                try:
                    until("the lock", lambda pid=process.pid: desk.eyes.covered(pid), 10)
                    self.assertFalse(desk.keys_reach_the_document())
                    self.assertIsNone(process.poll())
                finally:
                    process.kill()
                    process.wait()
                    until("the desktop is back", lambda: not desk.eyes.dark(), 5)


if __name__ == "__main__":
    unittest.main()
