"""An update on the real program: fetched by the run that locks, left alone within the hours, in place after the next
opening."""

import http.server
import os
import plistlib
import shutil
import signal
import subprocess
import threading

from case import DesktopCase, until

SIGN = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "sign-update")


class Quiet(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *_):
        pass


class UpdateTest(DesktopCase):
    def serve(self, folder):
        """The address of a folder's files."""
        server = http.server.ThreadingHTTPServer(
            ("127.0.0.1", 0), lambda *arguments: Quiet(*arguments, directory=folder))
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        return f"http://127.0.0.1:{server.server_port}"

    @staticmethod
    def info(bundle, **changes):
        """A bundle's property list, after changes."""
        path = os.path.join(bundle, "Contents", "Info.plist")
        with open(path, "rb") as file:
            info = {**plistlib.load(file), **changes}
        if changes:
            with open(path, "wb") as file:
                plistlib.dump(info, file)
        return info

    def offered(self):
        """A desk whose program knows a feed, on which its next version stands."""
        desk = self.desk(windows="openbox")
        served = os.path.join(desk.folder, "served")
        os.makedirs(served)
        url = self.serve(served)
        key = os.path.join(desk.folder, "key.pem")
        public = subprocess.run([SIGN, "key", key], check=True, capture_output=True, text=True).stdout.strip()
        self.info(desk.bundle.path, SUFeedURL=url + "/feed.json", SUPublicEDKey=public)
        newer = os.path.join(desk.folder, "newer", "Dormel.app")
        shutil.copytree(desk.bundle.path, newer, symlinks=True)
        self.info(newer, CFBundleVersion="99", CFBundleShortVersionString="9.9")
        subprocess.run([SIGN, "pack", newer, "--key", key, "--url", url, "--output", served], check=True,
                       capture_output=True)
        self.store = os.path.join(desk.home.applications, ".Dormel.app.update")
        return desk

    def build(self, desk):
        return self.info(desk.bundle.path)["CFBundleVersion"]

    def test_fetched_in_the_night_and_in_place_by_day(self):
        desk = self.offered()
        own = self.build(desk)
        lock = self.lock(desk)
        begun = self.clock()
        until("the update waits", lambda: os.path.exists(os.path.join(self.store, "update.json")), 40)
        self.saw(f"fetched and verified {self.clock() - begun:.1f} s after the lock stood")
        self.assertTrue(desk.eyes.covered(lock.pid))
        self.assertEqual(self.build(desk), own)

        # Within the hours an opening changes nothing.
        process = self.start(desk)
        self.opened(desk)
        self.assertEqual(self.build(desk), own)
        process.send_signal(signal.SIGINT)  # a quit request
        process.wait(10)
        lock.kill()
        lock.wait()

        desk.home.end_the_hours()
        begun = self.clock()
        process = self.start(desk)
        self.assertEqual(process.wait(15), 0)
        self.saw(f"in place after {self.clock() - begun:.2f} s")
        self.assertEqual(self.build(desk), "99")
        self.assertNotEqual(self.opened(desk), process.pid)
        self.saw(f"and open again after {self.clock() - begun:.2f} s")
        self.assertEqual(os.listdir(desk.home.applications), ["Dormel.app"])
        self.assertIn("9.9 (99)", desk.bundle.run("--version").stdout)
