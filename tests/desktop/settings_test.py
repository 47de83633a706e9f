"""Settings, records and logs that are damaged or cannot be written: the lock comes all the same."""

import os
import plistlib
import subprocess
import unittest

from case import DesktopCase, until
from desk import processes


class SettingsTest(DesktopCase):
    def test_a_settings_file_that_cannot_be_read(self):
        desk = self.desk()
        path = desk.home.settings_path
        os.makedirs(os.path.dirname(path), exist_ok=True)
        damaged = {
            "empty": b"",
            "noise": bytes(range(256)),
            "cut short": plistlib.dumps({"onboardingComplete": True})[:-30],
            "not a dictionary": plistlib.dumps(["onboardingComplete"]),
        }
        for name, content in damaged.items():
            with self.subTest(name):
                with open(path, "wb") as file:
                    file.write(content)
                done = desk.bundle.run("--scheduled", within=10)
                errors = [line for line in done.stderr.split("\n") if line]
                self.saw(f"{name}: {done.stdout.strip()} | {errors}")
                # The defaults are in force: nobody has set the program up.
                self.assertEqual(done.returncode, 0)
                self.assertIn("Onboarding not complete — not blocking. Exiting.", done.stdout)
                self.assertEqual(len(errors), 1)
                kept = [entry for entry in os.listdir(os.path.dirname(path))
                        if self._content(os.path.join(os.path.dirname(path), entry)) == content]
                self.assertTrue(kept, "what was in the file is kept")

    @staticmethod
    def _content(path):
        with open(path, "rb") as file:
            return file.read()

    def test_records_and_logs_that_cannot_be_written(self):
        desk = self.desk()
        # Files where folders should be: nobody may write there, not even root.
        library = os.path.join(desk.home.path, "Library")
        for folder in ("Logs", "Application Support"):
            os.makedirs(library, exist_ok=True)
            with open(os.path.join(library, folder), "w", encoding="ascii"):
                pass
        desk.home.hours_around_now(onboardingComplete=True)
        process = desk.bundle.start("--scheduled", output=subprocess.DEVNULL)
        self.addCleanup(lambda: (process.kill(), process.wait()))
        until("the lock", lambda: desk.eyes.covered(process.pid), 10)
        self.assertFalse(desk.keys_reach_the_document())
        self.assert_stays(process, 1)

    def test_the_scheduler_locks_without_a_log(self):
        for manager in (True, False):
            with self.subTest("user manager" if manager else "built-in supervisor"):
                desk = self.desk(manager=manager)
                self.assertIsNone(desk.manager_missing)
                os.makedirs(os.path.join(desk.home.path, "Library"))
                with open(os.path.join(desk.home.path, "Library", "Logs"), "w", encoding="ascii"):
                    pass
                desk.home.hours_around_now()
                desk.bundle.setup()
                for word in ("locked", "killed and locked again"):
                    pid = desk.bundle.wait_for_scheduled()
                    until(word, lambda pid=pid: desk.eyes.covered(pid), 10)
                    desk.bundle.kill(pid)
                    until("it is gone", lambda pid=pid: not processes.alive(pid), 5)
                desk.close()

    def test_a_full_disk(self):
        """Nothing more can be written: the lock comes all the same, and what is saved stays as it is."""
        desk = self.desk()
        desk.home.hours_around_now(onboardingComplete=False)
        # A small disk of its own for everything that the program writes, filled to the last byte.
        script = """set -e
            settings=$(cat "$1")
            mount -t tmpfs -o size=64k none "$HOME/Library"
            mkdir -p "$HOME/Library/Preferences" "$HOME/Library/Logs/Dormel" "$HOME/Library/LaunchAgents"
            echo "$settings" > "$1"
            sed s/false/true/ "$1" > "$HOME/Library/Preferences/ready"
            touch "$HOME/Library/Logs/Dormel/dormel.log"
            head -c 1M /dev/zero > "$HOME/Library/rest" 2> /dev/null || true
            "$0" --setup || echo "status $?"
            echo "$settings" | cmp - "$1" && echo "settings are as they were"
            mv "$HOME/Library/Preferences/ready" "$1"
            exec "$0" --scheduled"""
        command = ["unshare", "--mount", *([] if os.getuid() == 0 else ["--map-root-user"])]
        if subprocess.run([*command, "true"], capture_output=True, check=False).returncode != 0:
            self.skipTest("this system makes no mount namespaces")
        process = subprocess.Popen([*command, "/bin/sh", "-c", script, desk.bundle.program, desk.home.settings_path],
                                   env=desk.environment(), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                   stderr=subprocess.STDOUT, text=True)
        try:
            until("the lock", lambda: desk.eyes.covered(process.pid), 15)
            self.assertFalse(desk.keys_reach_the_document())
            self.assert_stays(process, 1)
        finally:
            process.kill()
            said = process.communicate()[0]
        self.saw(" / ".join(said.splitlines()))
        self.assertIn("Setup FAILED — agent not installed.\nstatus 1\nsettings are as they were\n", said)

if __name__ == "__main__":
    unittest.main()
