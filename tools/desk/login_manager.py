"""The system bus of a private desk, with somebody on it who says that the machine goes to sleep and wakes up."""

import ctypes
import os
import subprocess

from . import buses
from .wait import until

NAME, OBJECT, INTERFACE = b"org.freedesktop.login1", b"/org/freedesktop/login1", b"org.freedesktop.login1.Manager"


class LoginManager:
    """Use as a context; `environment` leads a program to this bus."""

    def __init__(self, folder):
        self._path = os.path.join(folder, "system-bus")
        self.environment = {"DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={self._path}"}
        self._systemd = ctypes.CDLL("libsystemd.so.0")
        self._bus = ctypes.c_void_p()
        self._daemon = None

    def __enter__(self):
        self._daemon = subprocess.Popen(buses.daemon("system", self._path), stdin=subprocess.DEVNULL,
                                        start_new_session=True)
        try:
            until("the bus is there", lambda: buses.listens(self._path), 5)
            self._take_the_name()
        except BaseException:
            self.end_the_bus()
            raise
        return self

    def _take_the_name(self):
        self._call("sd_bus_new", ctypes.byref(self._bus))
        self._call("sd_bus_set_address", self._bus, self.environment["DBUS_SYSTEM_BUS_ADDRESS"].encode())
        self._call("sd_bus_set_bus_client", self._bus, 1)
        self._call("sd_bus_start", self._bus)
        self._call("sd_bus_request_name", self._bus, NAME, ctypes.c_uint64(0))

    def __exit__(self, *_):
        self._systemd.sd_bus_flush_close_unref(self._bus)
        self.end_the_bus()

    def end_the_bus(self):
        self._daemon.kill()
        self._daemon.wait()

    def say(self, going_to_sleep):
        """Going to sleep, or awake again."""
        self._call("sd_bus_emit_signal", self._bus, OBJECT, INTERFACE, b"PrepareForSleep", b"b",
                   ctypes.c_int(going_to_sleep))
        self._call("sd_bus_flush", self._bus)

    def _call(self, name, *arguments):
        result = getattr(self._systemd, name)(*arguments)
        if result < 0:
            raise OSError(-result, f"{name}: {os.strerror(-result)}")
