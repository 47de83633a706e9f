"""One night through the real scheduler: locked, lifted by real keys, killed, locked again, over."""

import os
import re
import subprocess
import unittest

from case import DesktopCase
from desk.night import FIRST_HOLD, Night


class NightTest(DesktopCase):
    def night(self, **options):
        desk = self.desk(**options)
        began = self.clock()
        return Night(desk, desk.bundle,
                     lambda title, detail, at, _: self.saw(f"{at - began:6.2f} s  {title:24}{detail}"))

    def test_a_night_on_the_user_manager(self):
        night = self.night(manager=True)
        self.assertIsNone(night.desk.manager_missing)
        night.arm()
        night.let_go_early()
        night.hold(FIRST_HOLD)
        self.assertEqual(night.unlock(), 1)
        night.kill()
        night.end()

    def test_the_built_in_supervisor_brings_the_lock_back(self):
        night = self.night(manager=False)
        night.arm()
        night.kill()
        night.kill()
        night.end()

    def test_what_locks_loads_no_toolkit_whatever_the_desktop_asks_for(self):
        desk = self.desk()
        process = self.lock(desk, environment={"QT_QPA_PLATFORMTHEME": "gtk3", "QT_PLUGIN_PATH": "/usr/lib",
                                               "GTK_MODULES": "gail:atk-bridge", "LD_BIND_NOW": "1"})
        self.press_the_keys(desk)
        with open(f"/proc/{process.pid}/maps", encoding="utf-8") as file:
            loaded = {os.path.basename(line.split(maxsplit=5)[5].strip()) for line in file if len(line.split()) > 5}
        self.assertTrue(any(name.startswith("libsystemd.so") for name in loaded), loaded)  # read while it still ran
        heavy = re.compile("Qt|icu|GL|drm|gtk|glib|python|png|jpe?g|webp|tiff|svg|font|freetype|harfbuzz", re.ASCII)
        self.assertEqual([name for name in sorted(loaded) if heavy.search(name)], [])

    def test_without_the_program_for_windows_it_says_so(self):
        desk = self.desk()
        os.remove(os.path.join(os.path.dirname(desk.bundle.program), "DormelWindow"))
        opened = subprocess.run([desk.bundle.program], env=desk.environment(), capture_output=True, text=True,
                                timeout=10, check=False)
        self.assertEqual(opened.returncode, 1)
        self.assertRegex(opened.stderr, "^Dormel: .*/Contents/Linux/DormelWindow: No such file or directory$")


if __name__ == "__main__":
    unittest.main()
