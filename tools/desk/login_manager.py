"""The system bus of a private desk, with somebody on it who says that the machine goes to sleep and wakes up.

Needs python3-dbus.
"""

import os
import subprocess

import dbus
import dbus.lowlevel

from . import buses
from .wait import until

NAME, OBJECT, INTERFACE = "org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager"


class LoginManager:
    """Use as a context; `environment` leads a program to this bus."""

    def __init__(self, folder):
        self._path = os.path.join(folder, "system-bus")
        self.environment = {"DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={self._path}"}
        self._daemon = self._bus = None

    def __enter__(self):
        self._daemon = subprocess.Popen(buses.daemon("system", self._path), stdin=subprocess.DEVNULL,
                                        start_new_session=True)
        try:
            until("the bus is there", lambda: buses.listens(self._path), 5)
            self._bus = dbus.bus.BusConnection(f"unix:path={self._path}")
            self._bus.request_name(NAME)
        except BaseException:
            self.end_the_bus()
            raise
        return self

    def __exit__(self, *_):
        self._bus.close()
        self.end_the_bus()

    def end_the_bus(self):
        self._daemon.kill()
        self._daemon.wait()

    def say(self, going_to_sleep):
        """Going to sleep, or awake again."""
        signal = dbus.lowlevel.SignalMessage(OBJECT, INTERFACE, "PrepareForSleep")
        signal.append(bool(going_to_sleep), signature="b")
        self._bus.send_message(signal)
        self._bus.flush()
