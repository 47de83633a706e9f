"""tools/progress: what a build says while people wait for it."""

import os
import pathlib
import pty
import re
import subprocess
import tempfile
import unittest

TOOL = pathlib.Path(__file__).resolve().parents[2] / "tools" / "progress"
NINJA = "-- Configuring done\n[1/3] Building a\nwarning: x\n[2/3] Building b\n[3/3] Linking c\n"
APT = ("Get:1 http://deb lists [1 kB]\n0 upgraded, 2 newly installed, 0 to remove and 1 not upgraded.\n"
       + "".join(f"{word} {name}\n" for word in ("Get:1", "Unpacking", "Setting up") for name in "ab"))


class Progress(unittest.TestCase):
    def told(self, text, terminal=False, interval="0"):
        """What it printed; what it was given must be in the file, whole."""
        with tempfile.NamedTemporaryFile() as file:
            reading, writing = pty.openpty() if terminal else os.pipe()
            subprocess.run([TOOL, "Building", file.name], input=text, text=True, stdout=writing, check=True,
                           env={**os.environ, "PROGRESS_INTERVAL": interval})
            os.close(writing)
            with open(reading, "rb", closefd=True) as pipe:
                told = b""
                try:
                    while chunk := os.read(pipe.fileno(), 4096):
                        told += chunk
                except OSError:
                    pass  # how a terminal ends
            self.assertEqual(pathlib.Path(file.name).read_text(encoding="utf-8"), text)
        return re.sub(r"\b\d+:\d\d\b", "0:00", told.decode())  # a loaded machine takes seconds over it

    def test_steps(self):
        for text, steps in ((NINJA, 3), (APT, 6)):
            lines = self.told(text).splitlines()
            counted = [f"Building: {n} of {steps} steps, 0:00" for n in range(0 if text == APT else 1, steps + 1)]
            self.assertEqual(lines, [*counted, f"Building: {steps} of {steps} steps in 0:00"])

    def test_one_line_on_a_terminal_and_few_in_a_file(self):
        self.assertEqual(self.told(NINJA, terminal=True).count("\n"), 1)
        self.assertEqual(self.told(NINJA, interval="30"), "Building: 3 of 3 steps in 0:00\n")

    def test_nothing_to_do(self):
        self.assertEqual(self.told("ninja: no work to do.\n", terminal=True), "")


if __name__ == "__main__":
    unittest.main()
