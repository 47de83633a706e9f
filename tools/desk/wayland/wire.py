"""A Wayland client's side of the wire: requests and events by the names in the protocol files.

One connection belongs to one thread. Objects are made by requests, or bound from the registry; an event is delivered to
the function that was set under its name (`keyboard.on["key"] = ...`).
"""

import array
import os
import select
import socket
import struct
import time
import xml.etree.ElementTree as xml

from ..wait import NotSeen

FOLDER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "protocols")
ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__)))))
FILES = ["/usr/share/wayland/wayland.xml",
         "/usr/share/wayland-protocols/stable/xdg-shell/xdg-shell.xml",
         "/usr/share/wayland-protocols/unstable/xdg-output/xdg-output-unstable-v1.xml",
         "/usr/share/wayland-protocols/staging/ext-session-lock/ext-session-lock-v1.xml",
         "/usr/share/plasma-wayland-protocols/fake-input.xml",
         os.path.join(ROOT, "platform", "linux", "wayland", "protocols", "wlr-layer-shell-unstable-v1.xml"),
         *(os.path.join(FOLDER, name + ".xml") for name in ("virtual-keyboard-unstable-v1", "wlr-screencopy-unstable-v1",
                                                            "wlr-virtual-pointer-unstable-v1"))]


class Message:
    def __init__(self, element):
        self.name = element.get("name")
        self.args = [(a.get("type"), a.get("interface")) for a in element.findall("arg")]


class Interface:
    def __init__(self, element):
        self.name = element.get("name")
        self.requests = {m.name: (opcode, m) for opcode, m in enumerate(map(Message, element.findall("request")))}
        self.events = [Message(e) for e in element.findall("event")]


def _interfaces():
    found = {}
    for path in FILES:
        if os.path.exists(path):
            found.update((e.get("name"), Interface(e)) for e in xml.parse(path).getroot().findall("interface"))
    return found


class Proxy:
    def __init__(self, connection, number, interface, version):
        self.connection, self.id, self.interface, self.version = connection, number, interface, version
        self.on = {}
        connection.objects[number] = self

    def __getattr__(self, name):
        opcode, message = self.interface.requests[name]
        return lambda *values: self.connection.send(self, opcode, message, values)


class Connection:
    INTERFACES = None

    def __init__(self, path, already=None):
        """To the socket at `path`, or over a socket that is connected already."""
        if Connection.INTERFACES is None:
            Connection.INTERFACES = _interfaces()
        self.objects, self.globals, self.error = {}, {}, None
        self._last, self._free = 0, []
        self._in, self._fds = b"", []
        self._socket = already or socket.socket(socket.AF_UNIX)
        if already is None:
            self._socket.connect(path)
        self.display = self._make("wl_display", 1)
        self.display.on["error"] = self._failed
        self.display.on["delete_id"] = lambda number: self.objects.pop(number, None)
        self.registry = self.display.get_registry()
        self.registry.on["global"] = lambda *g: self.globals.__setitem__(g[0], (g[1], g[2]))
        self.registry.on["global_remove"] = lambda name: self.globals.pop(name, None)
        self.roundtrip()

    def _make(self, interface, version):
        self._last += 1
        return Proxy(self, self._last, self.INTERFACES[interface], version)

    def _failed(self, culprit, code, text):
        name = culprit.interface.name if culprit else "?"
        self.error = f"{name}: error {code}: {text}"

    def names(self, interface):
        """The registry's numbers of the globals with this interface, in the order in which they came."""
        return [number for number, (name, _) in self.globals.items() if name == interface]

    def bind(self, interface, version=1, number=None):
        """A global, in the version asked for or the newest offered below it; None where it is not offered."""
        number = number if number is not None else next(iter(self.names(interface)), None)
        if number is None:
            return None
        version = min(version, self.globals[number][1])
        proxy = self._make(interface, version)
        name = interface.encode() + b"\0"
        body = struct.pack("=II", number, len(name)) + name + b"\0" * (-len(name) % 4)
        self._write(self.registry.id, 0, body + struct.pack("=II", version, proxy.id), [])
        return proxy

    def send(self, proxy, opcode, message, values):
        body, fds, made, values = b"", [], None, list(values)
        for kind, interface in message.args:
            if kind == "new_id":
                made = self._make(interface, proxy.version)
                body += struct.pack("=I", made.id)
                continue
            value = values.pop(0)
            if kind == "fd":
                fds.append(value)
            elif kind == "int":
                body += struct.pack("=i", value)
            elif kind == "uint":
                body += struct.pack("=I", value)
            elif kind == "fixed":
                body += struct.pack("=i", round(value * 256))
            elif kind == "object":
                body += struct.pack("=I", value.id if value is not None else 0)
            elif kind == "string":
                text = value.encode() + b"\0"
                body += struct.pack("=I", len(text)) + text + b"\0" * (-len(text) % 4)
            else:
                raise ValueError(kind)
        self._write(proxy.id, opcode, body, fds)
        return made

    def _write(self, number, opcode, body, fds):
        data = struct.pack("=II", number, (len(body) + 8) << 16 | opcode) + body
        rights = [(socket.SOL_SOCKET, socket.SCM_RIGHTS, array.array("i", fds))] if fds else []
        self._socket.sendmsg([data], rights)

    def dispatch(self, within=0.0):
        """Delivers what has come, after waiting for it if need be; False when nothing came. OSError at the end."""
        if not select.select([self._socket], [], [], max(0.0, within))[0]:
            return False
        data, rights, _, _ = self._socket.recvmsg(65536, socket.CMSG_SPACE(28 * 4))
        for level, kind, fds in rights:
            if level == socket.SOL_SOCKET and kind == socket.SCM_RIGHTS:
                self._fds += array.array("i", fds[:len(fds) - len(fds) % 4]).tolist()
        if not data:
            raise ConnectionResetError("the compositor closed the connection")
        self._in += data
        while len(self._in) >= 8:
            number, word = struct.unpack_from("=II", self._in)
            size = word >> 16
            if len(self._in) < size:
                break
            body, self._in = self._in[8:size], self._in[size:]
            self._deliver(number, word & 0xFFFF, body)
        return True

    def _deliver(self, number, opcode, body):
        proxy = self.objects.get(number)
        if proxy is None:
            return
        message, at, values = proxy.interface.events[opcode], 0, []
        for kind, interface in message.args:
            if kind == "fd":
                values.append(self._fds.pop(0))
                continue
            word, = struct.unpack_from("=I", body, at)
            at += 4
            if kind == "int":
                word, = struct.unpack("=i", struct.pack("=I", word))
            elif kind == "fixed":
                word = struct.unpack("=i", struct.pack("=I", word))[0] / 256
            elif kind in ("string", "array"):
                data = body[at:at + word]
                at += word + -word % 4
                word = data[:-1].decode(errors="replace") if kind == "string" else data
            elif kind == "object":
                word = self.objects.get(word)
            elif kind == "new_id":
                word = Proxy(self, word, self.INTERFACES[interface], proxy.version)
            values.append(word)
        handler = proxy.on.get(message.name)
        if handler:
            handler(*values)

    def roundtrip(self, within=5.0):
        """Returns when the compositor has carried out everything sent before."""
        done = []
        self.display.sync().on["done"] = done.append
        deadline = time.monotonic() + within
        while not done:
            if time.monotonic() > deadline:
                raise NotSeen(f"the compositor does not answer within {within:g} s")
            self.dispatch(0.1)
        if self.error:
            raise OSError(self.error)

    def close(self):
        self._socket.close()
