"""Where nothing can be locked and no settings page of the desktop changes that, the windows say what to do instead."""

import os
import socket
import threading
import unittest

from case import DesktopCase, until
from desk.first_run import noon

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
    def reader_of(self, **settings):
        desk = self.desk(windows="openbox", extra={"TZ": noon(), "XDG_CURRENT_DESKTOP": "XFCE"})
        desk.home.change_settings(**settings)
        bridge = Bridge(desk.server)
        self.addCleanup(bridge.close)
        reader = self.reader(desk)
        process = self.start(desk, environment={**bridge.environment, **reader.environment()})
        self.in_front(desk, process, "Dormel")
        return reader

    def leads_out(self, reader, told):
        until("what to do", lambda: any(told(e.name) and "choose a session on X11" in e.name
                                        for e in reader.elements()), 10)
        names = [e.name for e in reader.elements() if e.usable]
        self.assertFalse([name for name in names if name in ("Open Settings", "Grant")], "a button that does nothing")
        return names

    def test_the_settings_window_says_what_to_do(self):
        reader = self.reader_of(onboardingComplete=True, blockStartHour=22, blockEndHour=6)
        self.leads_out(reader, lambda name: name.startswith("Screen lock. This desktop doesn't let Dormel"))

    def test_the_first_run_waits_for_it(self):
        reader = self.reader_of(onboardingV2Beat=8)
        names = self.leads_out(reader, lambda name: True)
        self.assertNotIn("Continue", names, "not before it is there")


if __name__ == "__main__":
    unittest.main()
