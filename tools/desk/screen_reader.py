"""What a screen reader is told: the controls of our windows by name, role, state and place, over the accessibility bus.

Needs python3-dbus and at-spi2-core. Works on the session bus of the desk's user manager, on the desk's own
(`session_bus`), or on one that it starts.
"""

import os
import re
from dataclasses import dataclass

import dbus

from .wait import No, until

ACCESSIBLE = "org.a11y.atspi.Accessible"
COMPONENT = "org.a11y.atspi.Component"
ACTION = "org.a11y.atspi.Action"
EVENT = "org.a11y.atspi.Event.Object"
REGISTRY_ITSELF = ("org.a11y.atspi.Registry", "/org/a11y/atspi/registry")
REGISTRY = ("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root")
PROPERTIES = "org.freedesktop.DBus.Properties"
SCREEN = dbus.UInt32(0)

# Bits of a state set that are asked for here.
STATES = {"active": 1, "checked": 4, "enabled": 8, "expandable": 9, "expanded": 10, "focusable": 11, "focused": 12,
          "selected": 23, "sensitive": 24, "showing": 25}


@dataclass(frozen=True)
class Element:
    address: tuple
    role: str
    name: str
    description: str
    states: frozenset
    x: int
    y: int
    width: int
    height: int

    @property
    def centre(self):
        return self.x + self.width // 2, self.y + self.height // 2

    @property
    def usable(self):
        return {"enabled", "showing"} <= self.states


class ScreenReader:
    def __init__(self, desk):
        if hasattr(desk, "session_bus"):
            self._session = desk.session_bus
        elif desk.manager is not None:
            self._session = desk.environment()["DBUS_SESSION_BUS_ADDRESS"]
        else:
            self._session = desk.start_bus("reader-bus")
        session = dbus.bus.BusConnection(self._session)
        door = session.get_object("org.a11y.Bus", "/org/a11y/bus")
        # Programs only speak to assistive tools while somebody says that there are any.
        door.Set("org.a11y.Status", "IsEnabled", True, dbus_interface=PROPERTIES)
        self._address = str(door.GetAddress(dbus_interface="org.a11y.Bus"))
        self._bus = dbus.bus.BusConnection(self._address)
        self._kept = session

    def environment(self):
        """What a program needs to be heard."""
        return {"DBUS_SESSION_BUS_ADDRESS": self._session}

    def _ask(self, address, interface, method, *arguments):
        return self._bus.get_object(*address, introspect=False).get_dbus_method(method, interface)(*arguments)

    def _describe(self, address):
        name, description = (str(self._ask(address, PROPERTIES, "Get", ACCESSIBLE, what))
                             for what in ("Name", "Description"))
        role = str(self._ask(address, ACCESSIBLE, "GetRoleName"))
        low, high = self._ask(address, ACCESSIBLE, "GetState")
        bits = int(low) | int(high) << 32
        states = frozenset(state for state, bit in STATES.items() if bits >> bit & 1)
        place = (0, 0, 0, 0)
        if role != "application":
            place = tuple(map(int, self._ask(address, COMPONENT, "GetExtents", SCREEN)))
        return Element(address, role, name, description, states, *place)

    def elements(self):
        """Everything that programs show, from the outside in. Without GNOME's shell, which takes seconds to read."""
        waiting = [REGISTRY]
        found = []
        while waiting:
            address = waiting.pop(0)
            try:
                if address != REGISTRY:
                    element = self._describe(address)
                    if (element.role, element.name) == ("application", "gnome-shell"):
                        continue
                    found.append(element)
                waiting += [(str(child[0]), str(child[1])) for child in self._ask(address, ACCESSIBLE, "GetChildren")]
            except dbus.exceptions.DBusException:
                pass  # gone meanwhile
        return found

    def find(self, name, role=None):
        """The element of that name that can be used now, or why there is none."""
        named = [e for e in self.elements() if e.name == name and role in (None, e.role)]
        return next((e for e in named if e.usable), None) or No(f"{name!r} is {[sorted(e.states) for e in named]}")

    def wait_for(self, name, within, role=None):
        return until(f"{name!r} can be used", lambda: self.find(name, role), within, every=0.1)

    def focused(self):
        """The innermost element that has the keyboard, once there is one."""
        return until("something has the focus",
                     lambda: [e for e in self.elements() if "focused" in e.states], 3, every=0.02)[-1]

    def listen(self, desk):
        """From here on focus_said() tells; without anybody who listens, programs say nothing."""
        self._bus.get_object(*REGISTRY_ITSELF, introspect=False).RegisterEvent(
            "object:state-changed:focused", dbus.Array(signature="s"), "", dbus_interface=REGISTRY_ITSELF[0])
        desk.helper(["dbus-monitor", "--address", self._address,
                     f"type='signal',interface='{EVENT}',member='StateChanged',arg0='focused'"])
        self._heard = os.path.join(desk.folder, "dbus-monitor.out")
        until("the bus is listened to", lambda: os.path.getsize(self._heard) > 0, 5)

    def focus_said(self):
        """The names of what was said to have the focus, in that order."""
        with open(self._heard, encoding="utf-8") as file:
            said = re.findall(r"sender=(\S+) .*path=(\S+);.*\n +string \"focused\"\n +int32 1", file.read())
        return [self._describe(address).name for address in said]

    def press(self, element):
        """As a screen reader's user presses it."""
        self._ask(element.address, ACTION, "DoAction", dbus.Int32(0))

    def close(self):
        self._bus.close()
        self._kept.close()
