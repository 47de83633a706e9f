"""The opened program looks after its job, which its user switches off and on in the desktop's settings."""

import os
import subprocess
import time
import unittest

from case import RETURN, DesktopCase, until

BACK_ON = "self-heal: Login Items switched back on — agent re-armed"


class SelfHealTest(DesktopCase):
    def armed(self, **options):
        desk = self.desk(windows="openbox", **options)
        hour = time.localtime().tm_hour
        desk.home.change_settings(blockStartHour=(hour + 6) % 24, blockEndHour=(hour + 9) % 24,
                                  debugLoggingEnabled=True)
        desk.bundle.setup()
        self.assertTrue(self.is_loaded(desk))
        return desk

    @staticmethod
    def launchctl(desk, *arguments):
        return subprocess.run([desk.bundle.launchctl, *arguments], env=desk.environment(), check=False,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode

    def target(self, desk):
        return f"gui/{os.getuid()}/{desk.home.identifier}"

    def is_loaded(self, desk):
        return self.launchctl(desk, "print", self.target(desk)) == 0

    def entry(self, desk):
        return os.path.join(desk.home.path, ".config", "autostart", desk.home.identifier + ".desktop")

    def switch_off(self, desk):
        text = self.text(self.entry(desk))
        self.put(self.entry(desk), text + "Hidden=true\n")
        return lambda: self.put(self.entry(desk), text)

    @staticmethod
    def text(path):
        try:
            with open(path, encoding="utf-8") as file:
                return file.read()
        except FileNotFoundError:
            return ""

    @staticmethod
    def put(path, text):
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)

    def test_switched_off_and_on_in_the_settings(self):
        desk = self.armed()
        tools = os.path.join(desk.home.path, "bin")
        os.makedirs(tools)
        visited = os.path.join(desk.home.path, "visited")
        settings = os.path.join(tools, "systemsettings")
        self.put(settings, f"#!/bin/sh\necho \"$@\" > '{visited}'\n")
        os.chmod(settings, 0o755)
        switch_on = self.switch_off(desk)

        environment = {"PATH": tools + ":/usr/bin:/bin", "XDG_CURRENT_DESKTOP": "KDE"}
        process = self.start(desk, environment=environment)
        self.in_front(desk, process, "Dormel is switched off")
        self.assertFalse(self.is_loaded(desk))
        desk.keyboard.tap(RETURN)
        self.assertEqual(until("the settings program", lambda: self.text(visited), 5), "kcm_autostart\n")

        # Coming back without having done anything changes nothing.
        self.leave_and_return(desk, process)
        self.assertFalse(self.is_loaded(desk))
        self.leave_and_return(desk, process, switch_on)
        desk.home.wait_for_line("debug.log", BACK_ON, 5)
        self.assertTrue(self.is_loaded(desk))

    def leave_and_return(self, desk, process, meanwhile=lambda: None):
        """Clicks into the document, and back into the program's window."""
        window = self.in_front(desk, process, "Dormel")
        desk.mouse.click(210, 170)
        until("the document is active", lambda: desk.clients.active() != window.id, 5)
        time.sleep(0.6)  # nobody is away for less, and the toolkit takes 0.4 s for a flicker of the focus
        meanwhile()
        desk.mouse.click(*window.at(window.width - 4, 60))  # beside the document, which is in front now
        until("the window is active", lambda: desk.clients.active() == window.id, 5)


if __name__ == "__main__":
    unittest.main()
