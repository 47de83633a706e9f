"""GNOME Shell without a screen of its own: a private session with the real shell, the buses and the services that it
expects of a login, hands and eyes. Needs the packages of the group "gnome" (tools/packages), which Debian 12 has in
another version: see `tools/on`."""

from .desk import GnomeDesk
from .remote import Keyboard
from .shell import GnomeShell

__all__ = ["GnomeDesk", "GnomeShell", "Keyboard"]
