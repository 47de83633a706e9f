"""Where the keyboard cannot be taken, the windows lead to the permission: their buttons open the desktop's own settings,
and the guide docks there."""

import os
import shutil
import socket
import threading
import unittest

from case import DesktopCase, until
from desk.first_run import noon
from desk.screen_reader import ScreenReader

HERE = os.path.dirname(os.path.abspath(__file__))
PAGE = "xfce4-accessibility-settings"


class Bridge:
    """The server under another display number, where it looks like a Wayland compositor's X bridge."""

    def __init__(self, server):
        self._server = f"/tmp/.X11-unix/X{server.display[1:]}"
        number = next(n for n in range(30000 + os.getpid() % 10000, 50000) if not os.path.exists(f"/tmp/.X11-unix/X{n}"))
        self._path = f"/tmp/.X11-unix/X{number}"
        self._listener = socket.socket(socket.AF_UNIX)
        self._listener.bind(self._path)
        self._listener.listen()
        threading.Thread(target=self._accept, daemon=True).start()
        # The cookie of the server's own number counts for this one: without an entry of its own, clients send none.
        self.environment = {"DISPLAY": f":{number}", "XAUTHORITY": server.xauthority + ".bridge", "QT_XCB_NO_MITSHM": "1"}
        with open(server.xauthority, "rb") as entries, open(server.xauthority + ".bridge", "wb") as ours:
            old, new = server.display[1:].encode(), str(number).encode()
            ours.write(entries.read().replace(len(old).to_bytes(2, "big") + old, len(new).to_bytes(2, "big") + new))

    def _accept(self):
        while True:
            try:
                client, _ = self._listener.accept()
            except OSError:
                return
            server = socket.socket(socket.AF_UNIX)
            server.connect(self._server)
            # Who asks for the bridge's own extension is told of one that is there.
            threading.Thread(target=self._pass_on, args=(client, server, True), daemon=True).start()
            threading.Thread(target=self._pass_on, args=(server, client, False), daemon=True).start()

    @staticmethod
    def _pass_on(source, target, masked):
        try:
            while data := source.recv(1 << 16):
                target.sendall(data.replace(b"XWAYLAND", b"XINERAMA") if masked else data)
        except OSError:
            pass
        for end in (source, target):
            try:
                end.shutdown(socket.SHUT_RDWR)
            except OSError:
                pass
        source.close()

    def close(self):
        self._listener.shutdown(socket.SHUT_RDWR)
        self._listener.close()
        os.unlink(self._path)


class PermissionTest(DesktopCase):
    def desk_without_permission(self, **settings):
        desk = self.desk(windows="openbox", extra={"TZ": noon(), "XDG_CURRENT_DESKTOP": "XFCE"})
        programs = os.path.join(desk.folder, "bin")
        os.makedirs(programs)
        shutil.copy(os.path.join(HERE, "settings_program.py"), os.path.join(programs, PAGE))
        os.chmod(os.path.join(programs, PAGE), 0o755)
        desk.home.change_settings(debugLoggingEnabled=True, **settings)
        bridge = Bridge(desk.server)
        self.addCleanup(bridge.close)
        reader = ScreenReader(desk)
        self.addCleanup(reader.close)
        return desk, reader, {**bridge.environment, **reader.environment(), "PATH": f"{programs}:{os.environ['PATH']}"}

    def guide_docks(self, desk):
        settings = until("the settings program is in front", lambda: next(
            (c for c in desk.clients.all() if PAGE in c.names and c.id == desk.clients.active()), None), 10)

        def guide():
            # The server takes what comes over the bridge for this process's.
            return next((w for w in desk.eyes.windows_of(os.getpid()) if w.override and w.height == 109), None)

        seen = until("the guide", guide, 5)
        self.saw(f"the guide stands at {seen.x}, {seen.y}; the settings at {settings.at(0, 0)}")
        self.assertEqual(desk.clients.active(), settings.id)
        return guide

    def test_the_settings_window_leads_there(self):
        desk, reader, environment = self.desk_without_permission(onboardingComplete=True, blockStartHour=22,
                                                                 blockEndHour=6)
        process = self.start(desk, environment=environment)
        self.in_front(desk, process, "Dormel")
        reader.wait_for("Accessibility. Required. Dormel can't lock the screen.", 5)
        reader.press(reader.wait_for("Open Settings", 5))
        guide = self.guide_docks(desk)
        process.terminate()
        until("the guide goes with its window", lambda: guide() is None, 5)

    def test_the_first_run_waits_for_it(self):
        desk, reader, environment = self.desk_without_permission(onboardingV2Beat=8)
        process = self.start(desk, environment=environment)
        self.in_front(desk, process, "Dormel")
        reader.press(reader.wait_for("Grant", 10))
        guide = self.guide_docks(desk)
        self.assertFalse(any(e.name == "Continue" and e.usable for e in reader.elements()), "not before it is there")
        process.terminate()
        until("the guide goes with its window", lambda: guide() is None, 5)


if __name__ == "__main__":
    unittest.main()
