"""A desktop of our own: a real X server without a graphics card, its monitors, a keyboard, a home folder, a job
scheduler and a few unfriendly neighbours. The night tool, the desktop tests and the benchmarks play on it.

Nothing here knows how the program works inside: it is started, watched and typed at from outside, as a user would.
Times are seconds of the monotonic clock unless a name says otherwise. Needs Python 3.11, python3-xlib, the Xorg
server with its dummy driver, xrandr and ImageMagick (see tools/packages).
"""

from .bundle import Bundle
from .clients import Clients
from .desk import Desk
from .eyes import Eyes, Picture, Sampler
from .home import IDENTIFIER, Home
from .keyboard import ESCAPE, RETURN, SPACE, TAB, Keyboard, evdev_of_label
from .login_manager import LoginManager
from .mouse import Mouse
from .neighbours import Neighbour
from .server import Server
from .wait import NotSeen, until
from .watcher import Watcher

__all__ = ["Bundle", "Clients", "Desk", "ESCAPE", "Eyes", "Home", "IDENTIFIER", "Keyboard", "LoginManager", "Mouse",
           "Neighbour", "NotSeen", "Picture", "RETURN", "SPACE", "Sampler", "Server", "TAB", "Watcher", "evdev_of_label",
           "until"]
