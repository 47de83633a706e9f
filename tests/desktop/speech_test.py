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


class SpeechTest(DesktopCase):
    def hears(self, server, part):
        said = until(f"{part!r}", lambda: next((line for line in server.said if part in line), None), 8)
        self.saw(said)

    def test_a_lock_is_heard(self):
        desk = self.desk()
        reader = self.reader(desk)
        bus = dbus.bus.BusConnection(reader.environment()["DBUS_SESSION_BUS_ADDRESS"])
        bus.get_object("org.a11y.Bus", "/org/a11y/bus").Set("org.a11y.Status", "ScreenReaderEnabled", True,
                                                            dbus_interface=PROPERTIES)
        server = SpeechServer(desk.home.runtime)
        desk.home.change_settings(debugLoggingEnabled=True)
        self.lock(desk, environment={**reader.environment(), "LANG": "de_DE.UTF-8", "LANGUAGE": ""})
        self.hears(server, "Dieser Computer ist gesperrt. Zum Öffnen halte diese Tasten zusammen 30 Sekunden lang: ")
        self.assertEqual(server.commands[:3], ["SET self CLIENT_NAME user:dormel:lock", "SET self PRIORITY important",
                                               "SET self LANGUAGE de"])
        codes = self.press_the_keys(desk)
        self.hears(server, "Alle fünf. Weiter halten.")

        # Without its server the lock goes on, and finds the next one.
        server.close()
        desk.keyboard.release(*codes)
        server = SpeechServer(desk.home.runtime)
        self.addCleanup(server.close)
        desk.keyboard.press(codes[0])
        self.hears(server, "1 von 5.")
        desk.keyboard.release(codes[0])


if __name__ == "__main__":
    unittest.main()
