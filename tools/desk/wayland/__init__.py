"""The same private desktop without X: a headless Wayland compositor, its monitors, keys and pictures.

`Desk(compositor="sway")` is used like `desk.Desk`. sway, labwc and kwin are known; what one of them cannot do here it
says with NotSeen. Needs the compositor, grim (sway, labwc), python3-dbus (kwin) and the packaged protocol files.
"""

from .desk import WaylandDesk

__all__ = ["WaylandDesk"]
