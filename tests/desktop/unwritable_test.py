"""What it writes to is full, closed, or not there at all: the lock comes all the same."""

import os
import subprocess
import unittest

from case import DesktopCase, until


class UnwritableTest(DesktopCase):
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

    def play(self, desk, script):
        """Runs the shell's script, which ends as a scheduled run, with mounts of its own; answers what it said."""
        command = ["unshare", "--mount", *([] if os.getuid() == 0 else ["--map-root-user"])]
        if subprocess.run([*command, "true"], capture_output=True, check=False).returncode != 0:
            self.skipTest("this system makes no mount namespaces")
        process = subprocess.Popen([*command, "/bin/sh", "-ec", script, desk.bundle.program, desk.home.settings_path],
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
        return said

    def test_a_full_disk(self):
        """Nothing more can be written: the lock comes all the same, and what is saved stays as it is."""
        desk = self.desk()
        desk.home.hours_around_now(onboardingComplete=False)
        # A small disk of its own for everything that the program writes, filled to the last byte.
        said = self.play(desk, """settings=$(cat "$1")
            mount -t tmpfs -o size=64k none "$HOME/Library"
            mkdir -p "$HOME/Library/Preferences" "$HOME/Library/Logs/Dormel" "$HOME/Library/LaunchAgents"
            echo "$settings" > "$1"
            sed s/false/true/ "$1" > "$HOME/Library/Preferences/ready"
            touch "$HOME/Library/Logs/Dormel/dormel.log"
            head -c 1M /dev/zero > "$HOME/Library/rest" 2> /dev/null || true
            "$0" --setup || echo "status $?"
            echo "$settings" | cmp - "$1" && echo "settings are as they were"
            mv "$HOME/Library/Preferences/ready" "$1"
            exec "$0" --scheduled""")
        self.assertIn("Setup FAILED — agent not installed.\nstatus 1\nsettings are as they were\n", said)

    def test_a_home_that_is_only_read(self):
        """It cannot be armed from there, and is told so; a lock that is due comes."""
        desk = self.desk()
        desk.home.hours_around_now(onboardingComplete=True)
        said = self.play(desk, """mount --bind "$HOME" "$HOME"
            mount -o remount,bind,ro "$HOME"
            "$0" --setup || echo "status $?"
            exec "$0" --scheduled""")
        self.assertIn("AgentManager: failed to write plist: Read-only file system\n", said)
        self.assertIn("Setup FAILED — agent not installed.\nstatus 1\n", said)


if __name__ == "__main__":
    unittest.main()
