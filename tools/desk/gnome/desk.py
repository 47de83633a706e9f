"""A whole private GNOME session, put up and taken down as one."""

import os
import shutil

from ..private import PrivateDesk
from ..wait import until
from ..wayland.desk import FocusRecord, Looks, WaylandDesk
from ..wayland.witness import Witness
from .remote import Keyboard
from .shell import GnomeShell


class GnomeDesk(WaylandDesk):
    """Monitors, a home, the real shell, and hands and eyes; with somebody working in a document if `document`.

    DORMEL_LOGS names a folder that the shell's output is copied into at the end.
    prepare(desk): called before the shell starts, to put into the home what it is to find.
    """

    def __init__(self, monitors=((1920, 1080), (1280, 1024)), document=True, prepare=None):
        PrivateDesk.__init__(self)
        self.server = GnomeShell(self.folder, self.home, monitors)
        self.manager_missing = "not tried under GNOME Shell"
        self._document, self._prepare = document, prepare

    def _put_up(self):
        if self._prepare:
            self._prepare(self)
        self.server.start()
        self._sit_down()
        if self._document:
            self.sit_at_the_document()

    def _sit_down(self):
        # The shell opens its overview at every login, and shows no window full size while it is open.
        self.close_overview()
        self.eyes = Looks(self.server)
        self.keyboard = self._keep(Keyboard(self.server))

    def sit_at_the_document(self):
        self.witness = self._keep(Witness(self.server.path))
        self.watcher = FocusRecord(self.witness, self.eyes)

    def log_in_again(self):
        """After the shell was killed; without a document."""
        self._close_all()
        self.server.start_shell()
        self._sit_down()

    def close_overview(self):
        until("the overview is closed", self._overview_closed, 15, 0.1)

    def _overview_closed(self):
        properties = "org.freedesktop.DBus.Properties"
        place = "org.gnome.Shell", "/org/gnome/Shell"
        if not self.server.call(*place, properties + ".Get", "org.gnome.Shell", "OverviewActive"):
            return True
        self.server.call(*place, properties + ".Set", "org.gnome.Shell", "OverviewActive", False)
        return False

    def environment(self):
        return self.server.environment()

    @property
    def session_bus(self):
        return self.server.session_bus

    def close(self):
        self._close_all()
        if "DORMEL_LOGS" in os.environ:
            shutil.copy(os.path.join(self.folder, "gnome-shell.out"), os.environ["DORMEL_LOGS"])
        super().close()
