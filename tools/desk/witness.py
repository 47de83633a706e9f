"""An ordinary application with the keyboard focus, which writes down every key that reaches it."""

import select
import threading
import time

from Xlib import X, Xatom, error


class KeyRecord:
    """Base of the witnesses. `keys`: (time, "press" or "release", Linux key number)."""

    def __init__(self):
        self.keys = []
        self._lock = threading.Lock()

    def _note_key(self, key, down):
        with self._lock:
            self.keys.append((time.monotonic(), "press" if down else "release", key))

    def mark(self):
        with self._lock:
            return len(self.keys)

    def heard(self, since=0):
        with self._lock:
            return list(self.keys[since:])


class Witness(KeyRecord):
    """A document window. `picture`, if given, is a paint.Image that fills it."""

    def __init__(self, server, x=200, y=140, width=900, height=620, colour=0xE8E4DC, picture=None):
        super().__init__()
        self._display = server.open()
        screen = self._display.screen()
        # A window that places itself would escape a window manager; this one is managed where there is one.
        self.window = screen.root.create_window(
            x, y, width, height, 0, screen.root_depth, X.InputOutput, X.CopyFromParent, background_pixel=colour,
            event_mask=X.KeyPressMask | X.KeyReleaseMask | X.FocusChangeMask | X.StructureNotifyMask)
        self._display.set_error_handler(lambda *_: None)
        self.window.set_wm_name("Chapter seven")
        self.window.set_wm_class("witness", "Witness")
        self.window.change_property(self._display.intern_atom("_NET_WM_NAME"),
                                    self._display.intern_atom("UTF8_STRING"), 8, "Chapter seven".encode())
        self.window.set_wm_normal_hints(flags=3, x=x, y=y)
        self.window.change_property(self._display.intern_atom("_NET_WM_WINDOW_TYPE"), Xatom.ATOM, 32,
                                    [self._display.intern_atom("_NET_WM_WINDOW_TYPE_NORMAL")])
        if picture is not None:
            self.window.change_attributes(background_pixmap=picture.pixmap(self._display, self.window))
        self.window.map()
        self._display.sync()
        self._mapped = threading.Event()
        self.focused = threading.Event()
        self._closing = self._had_focus = False
        self._thread = threading.Thread(target=self._run, name="witness", daemon=True)
        self._thread.start()
        self._mapped.wait(5)

    def _run(self):
        try:
            while not self._closing:
                if self._display.pending_events() == 0:
                    select.select([self._display.fileno()], [], [], 0.5 if self._had_focus else 0.05)
                if not self._had_focus:
                    self._ask_for_focus()
                while self._display.pending_events():
                    event = self._display.next_event()
                    if event.type in (X.KeyPress, X.KeyRelease):
                        self._note_key(event.detail - 8, event.type == X.KeyPress)
                    elif event.type == X.MapNotify:
                        self._mapped.set()
                    elif event.type == X.FocusIn and event.mode in (X.NotifyNormal, X.NotifyUngrab):
                        self._had_focus = True
                        self.focused.set()
                    elif event.type == X.FocusOut and event.mode == X.NotifyNormal:
                        self.focused.clear()
        except (error.ConnectionClosedError, OSError, ValueError):
            pass

    def _ask_for_focus(self):
        """Once is not enough: a window manager that is still starting loses requests, and it shows a window before
        the frame that it puts around it."""
        if self._mapped.is_set():
            self.window.set_input_focus(X.RevertToPointerRoot, X.CurrentTime)
        else:
            self.window.map()
        self._display.flush()

    def close(self):
        self._closing = True
        self._thread.join(2)
        try:
            self._display.close()
        except Exception:
            pass
