#!/usr/bin/python3
"""A settings program as far as its window goes: a title, the names that tell it, and an end when it is closed."""

import os
import sys

from Xlib import X, Xatom
from Xlib import display as xdisplay

NAME = os.path.basename(sys.argv[0])


def main():
    display = xdisplay.Display()
    screen = display.screen()
    window = screen.root.create_window(120, 100, 940, 640, 0, screen.root_depth, X.InputOutput, X.CopyFromParent,
                                       background_pixel=0xF6F5F4, event_mask=X.StructureNotifyMask)
    window.set_wm_name("Accessibility")
    window.set_wm_class(NAME, NAME.capitalize())
    window.set_wm_normal_hints(flags=1, x=120, y=100)
    window.set_wm_protocols([display.intern_atom("WM_DELETE_WINDOW")])
    window.change_property(display.intern_atom("_NET_WM_PID"), Xatom.CARDINAL, 32, [os.getpid()])
    window.map()
    while True:
        event = display.next_event()
        if event.type == X.ClientMessage and event.client_type == display.intern_atom("WM_PROTOCOLS"):
            return


if __name__ == "__main__":
    main()
