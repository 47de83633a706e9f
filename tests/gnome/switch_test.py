"""The way to the extension in the real GNOME Shell: copied, found at the next login, switched off and on, taken away."""

import json
import os
import subprocess
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools"))

from desk import Bundle  # noqa: E402
from desk.gnome import GnomeDesk  # noqa: E402
from desk.gnome.extension import UUID  # noqa: E402
from desk.wait import until  # noqa: E402

SHELL = "org.gnome.shell"


class SwitchTest(unittest.TestCase):
    def switch(self, what, done=True):
        """Does it; answers the state that it led to."""
        result = subprocess.run([os.path.join(self.bundle.build, "tests", "gnome", "gnome_switch"),
                                 os.path.join(self.bundle.path, "Contents", "Resources", "gnome-shell"), what],
                                env=self.desk.environment(), capture_output=True, text=True, timeout=30, check=False)
        self.assertEqual(result.returncode, 0 if done else 1, result)
        return result.stdout.split("\n")[0]

    def assert_trusted(self, trusted):
        until(f"the permission is {trusted}", lambda: (self.bundle.run("--check-ax").returncode == 0) == trusted, 10, 0.2)

    def test_from_nothing_to_nothing(self):
        self.desk = self.enterContext(GnomeDesk(document=False))
        self.bundle = Bundle(self.desk).install()
        shell = self.desk.server
        copy = os.path.join(self.desk.home.path, ".local", "share", "gnome-shell", "extensions", UUID)
        self.assertEqual(self.switch("state"), "absent")
        self.assert_trusted(False)
        self.assertEqual(self.switch("lead"), "afterLogin")
        self.assertIn(UUID, shell.get(SHELL, "enabled-extensions"))
        self.assertEqual(self.switch("remove"), "absent")  # before the shell has heard of it
        self.assertNotIn(UUID, shell.get(SHELL, "enabled-extensions"))
        shell.set(SHELL, "disabled-extensions", f"['x@y', '{UUID}']")  # as an earlier time may have left it
        self.assertEqual(self.switch("lead"), "afterLogin")
        self.assert_trusted(False)

        shell.kill()
        self.desk.log_in_again()
        self.assert_trusted(True)
        self.assertEqual(self.switch("state"), "on")

        shell.shell("Extensions.DisableExtension", UUID)
        self.assert_trusted(False)
        self.assertEqual(self.switch("state"), "off")
        self.switch("lead")
        self.assert_trusted(True)

        shell.set(SHELL, "disable-user-extensions", "true")
        self.assert_trusted(False)
        self.assertEqual(self.switch("state"), "allOffBare")  # GNOME's program for extensions is not installed here
        self.switch("lead")
        self.assertEqual(shell.get(SHELL, "disable-user-extensions"), "false")
        self.assert_trusted(True)

        with open(os.path.join(copy, "metadata.json"), "r+", encoding="utf-8") as file:
            metadata = json.load(file)
            file.seek(0)
            json.dump({**metadata, "version": metadata["version"] + 1}, file)
            file.truncate()
        self.assertEqual(self.switch("state"), "onOlder")
        self.assert_trusted(True)
        self.assertEqual(self.switch("refresh"), "on")  # of the program's own version again

        self.switch("remove")
        self.assert_trusted(False)
        self.assertFalse(os.path.exists(copy))
        for key, left in (("enabled-extensions", "@as []"), ("disabled-extensions", "['x@y']")):
            self.assertEqual(shell.get(SHELL, key), left)


if __name__ == "__main__":
    unittest.main()
