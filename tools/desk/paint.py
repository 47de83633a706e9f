"""What the private desktop looks like: a wallpaper and a document, so that its pictures are of something.

Drawn by ImageMagick. Nothing but the pictures depends on it; where it is missing the desktop is one plain colour.
"""

import contextlib
import subprocess

from Xlib import X, Xatom

from .server import ServerClient

DAWN = "gradient:#29405f-#b98a72"


class Image:
    """Pixels made by `convert` from its own arguments, ready to be put into the server."""

    def __init__(self, width, height, arguments):
        self.width, self.height = width, height
        done = subprocess.run(["convert", "-size", f"{width}x{height}", *arguments, "-depth", "8", "bgra:-"],
                              capture_output=True, check=True, timeout=60)
        self.data = done.stdout

    def pixmap(self, display, drawable):
        screen = display.screen()
        pixmap = drawable.create_pixmap(self.width, self.height, screen.root_depth)
        self.put(pixmap, pixmap.create_gc(), 0, 0)
        return pixmap

    def put(self, drawable, gc, x, y):
        row = self.width * 4
        band = max(1, 200_000 // row)  # a request is at most 256 KiB
        for top in range(0, self.height, band):
            height = min(band, self.height - top)
            drawable.put_image(gc, x, y + top, self.width, height, X.ZPixmap, 24, 0,
                               self.data[top * row:(top + height) * row])


def wallpaper(server, monitors):
    """Paints every monitor's part of the root window and keeps it there after this connection ends."""
    with contextlib.closing(server.open()) as display:
        screen = display.screen()
        root = screen.root
        geometry = root.get_geometry()
        pixmap = root.create_pixmap(geometry.width, geometry.height, screen.root_depth)
        gc = pixmap.create_gc(foreground=0x29405F)
        pixmap.fill_rectangle(gc, 0, 0, geometry.width, geometry.height)
        for monitor in monitors:
            try:
                image = Image(monitor.width, monitor.height, [DAWN])
            except (OSError, subprocess.SubprocessError):
                break
            image.put(pixmap, gc, monitor.x, monitor.y)
        root.change_attributes(background_pixmap=pixmap)
        root.clear_area(0, 0, 0, 0)
        # Compositors take the wallpaper from here.
        display.set_close_down_mode(X.RetainPermanent)
        for name in ("_XROOTPMAP_ID", "ESETROOT_PMAP_ID"):
            root.change_property(display.intern_atom(name), display.intern_atom("PIXMAP"), 32, [pixmap.id])
        display.sync()


class DesktopWindow(ServerClient):
    """What the file manager of a desktop shows behind everything: the wallpaper, for compositors that leave out the
    root window."""

    def __init__(self, server):
        super().__init__(server)
        geometry = self._root.get_geometry()
        atom = self._display.intern_atom
        window = self._root.create_window(0, 0, geometry.width, geometry.height, 0, geometry.depth, X.InputOutput,
                                          X.CopyFromParent)
        pixmap, = self._root.get_full_property(atom("_XROOTPMAP_ID"), X.AnyPropertyType).value
        window.change_attributes(background_pixmap=self._display.create_resource_object("pixmap", pixmap))
        window.set_wm_normal_hints(flags=3, x=0, y=0)
        window.change_property(atom("_NET_WM_WINDOW_TYPE"), Xatom.ATOM, 32, [atom("_NET_WM_WINDOW_TYPE_DESKTOP")])
        window.map()
        self._display.sync()


def document(width, height):
    """A page that somebody should have stopped writing an hour ago."""
    lines = ["It was late, and the seventh chapter still had no end. He told",
             "himself that one more page would not hurt, as he had told",
             "himself at eleven, and at midnight, and at one.",
             "",
             "The street below had gone quiet long ago."]
    arguments = ["xc:#f4f1ea", "-fill", "#d9d4c7", "-draw", f"rectangle 0,0 {width},44", "-font", "Inter-Medium",
                 "-fill", "#6d675b", "-pointsize", "15", "-annotate", "+20+28", "Chapter seven", "-fill", "#33302a",
                 "-font", "Inter-Regular", "-pointsize", "22"]
    for number, line in enumerate(lines):
        if line:
            arguments += ["-annotate", f"+70+{130 + 40 * number}", line]
    try:
        return Image(width, height, arguments)
    except (OSError, subprocess.SubprocessError):
        return None
