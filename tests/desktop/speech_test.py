"""While a screen reader is on, the lock speaks, by the session's speech server and in the session's language."""

import os
import socket
import threading
import unittest

import dbus
from case import DesktopCase, until
from desk.screen_reader import PROPERTIES


class SpeechServer:
    """Takes what a client says, one command at a time, as speech-dispatcher does."""

    def __init__(self, runtime):
        folder = os.path.join(runtime, "speech-dispatcher")
        os.makedirs(folder, exist_ok=True)
        self._path = os.path.join(folder, "speechd.sock")
        self.commands, self.said = [], []
        self._clients = []
        self._listener = socket.socket(socket.AF_UNIX)
        self._listener.bind(self._path)
        self._listener.listen()
        threading.Thread(target=self._accept, daemon=True).start()

    def _accept(self):
        while True:
            try:
                client, _ = self._listener.accept()
            except OSError:
                return
            self._clients.append(client)
            threading.Thread(target=self._serve, args=(client,), daemon=True).start()

    def _serve(self, client):
        try:
            self._answer(client)
        except OSError:
            pass  # closed

    def _answer(self, client):
        with client.makefile("rw", encoding="utf-8", newline="\r\n") as stream:
            def answer(text):
                stream.write(text + "\r\n")
                stream.flush()

            for line in stream:
                self.commands.append(line.strip())
                if line.strip() != "SPEAK":
                    answer("208 OK")
                    continue
                answer("230 OK RECEIVING DATA")
                text = []
                while (spoken := stream.readline().rstrip("\r\n")) != ".":
                    text.append(spoken)
                self.said.append(" ".join(text))
                answer("225-21\r\n225 OK MESSAGE QUEUED")

    def close(self):
        for end in [self._listener, *self._clients]:
            try:
                end.shutdown(socket.SHUT_RDWR)
            except OSError:
                pass
            end.close()
        os.unlink(self._path)


class HungServer:
    """Is there and answers nothing. With `full`, nobody else is even let in."""

    def __init__(self, runtime, full):
        folder = os.path.join(runtime, "speech-dispatcher")
        os.makedirs(folder, exist_ok=True)
        self._path = os.path.join(folder, "speechd.sock")
        self._ends = [socket.socket(socket.AF_UNIX)]
        self._ends[0].bind(self._path)
        self._ends[0].listen(0)
        while full:
            self._ends.append(socket.socket(socket.AF_UNIX))
            self._ends[-1].setblocking(False)
            full = self._ends[-1].connect_ex(self._path) == 0

    def close(self):
        for end in self._ends:
            end.close()
        os.unlink(self._path)


class SpeechTest(DesktopCase):
    def hears(self, server, part):
        said = until(f"{part!r}", lambda: next((line for line in server.said if part in line), None), 8)
        self.saw(said)

    def listening_desk(self):
        """A desk with a screen reader, and the environment in which it is heard in German."""
        desk = self.desk()
        reader = self.reader(desk)
        bus = dbus.bus.BusConnection(reader.environment()["DBUS_SESSION_BUS_ADDRESS"])
        bus.get_object("org.a11y.Bus", "/org/a11y/bus").Set("org.a11y.Status", "ScreenReaderEnabled", True,
                                                            dbus_interface=PROPERTIES)
        desk.home.change_settings(debugLoggingEnabled=True)
        return desk, {**reader.environment(), "LANG": "de_DE.UTF-8", "LANGUAGE": ""}

    def test_a_bad_server_holds_nothing_up(self):
        """None that could be started, one that is silent, one that lets nobody in: the lock comes, keys count, and the
        next good server is found."""
        desk, environment = self.listening_desk()
        folder = os.path.join(desk.home.path, "bin")
        os.makedirs(folder)
        hangs = os.path.join(folder, "speech-dispatcher")
        with open(hangs, "w", encoding="ascii") as file:
            file.write("#!/bin/sh\nexec sleep 30\n")
        os.chmod(hangs, 0o755)
        environment["PATH"] = folder + ":" + os.environ["PATH"]
        for name, full in (("none", None), ("silent", False), ("full", True)):
            with self.subTest(name):
                server = None if full is None else HungServer(desk.home.runtime, full)
                began = self.clock()
                process = self.lock(desk, environment=environment)
                codes = self.press_the_keys(desk)
                took = self.clock() - began
                self.saw(f"{name}: all keys held {took:.1f} s after the start")
                self.assertLess(took, 6)
                desk.keyboard.release(*codes)
                if server is not None:
                    server.close()
                server = SpeechServer(desk.home.runtime)
                try:
                    def heard():
                        desk.keyboard.tap(codes[0])
                        return any("1 von 5." in line for line in server.said)
                    until("it is heard again", heard, 12, every=0.3)
                finally:
                    server.close()
                    process.kill()
                    process.wait()
                    until("the desktop is back", lambda: not desk.eyes.dark(), 5)

    def test_a_lock_is_heard(self):
        desk, environment = self.listening_desk()
        server = SpeechServer(desk.home.runtime)
        self.addCleanup(server.close)
        self.lock(desk, environment=environment)
        self.hears(server, "Dieser Computer ist gesperrt. Zum Öffnen halte diese Tasten zusammen 30 Sekunden lang: ")
        self.assertEqual(server.commands[:3], ["SET self CLIENT_NAME user:dormel:lock", "SET self PRIORITY important",
                                               "SET self LANGUAGE de"])
        self.press_the_keys(desk)
        self.hears(server, "Alle fünf. Weiter halten.")


if __name__ == "__main__":
    unittest.main()
