"""A home folder of its own for the program under the eye: settings, logs, runtime folder, environment."""

import os
import plistlib
import time

from .wait import PATIENCE, NotSeen

IDENTIFIER = os.environ.get("DORMEL_APP_ID_BASE", "com.orvane.dormel") + ".mac"


class Home:
    identifier = IDENTIFIER

    def __init__(self, folder):
        self.path = os.path.join(folder, "home")
        self.runtime = os.path.join(folder, "run")
        self.applications = os.path.join(self.path, "Applications")
        for path in (self.path, self.runtime, self.applications):
            os.makedirs(path, mode=0o700, exist_ok=True)

    def environment(self):
        """Only what a fresh session has, so that nothing of the surrounding one leaks in."""
        kept = {k: v for k, v in os.environ.items() if k in ("PATH", "TZ", "USER", "LOGNAME", "ASAN_OPTIONS",
                                                             "LSAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS")}
        return {**kept, "HOME": self.path, "XDG_RUNTIME_DIR": self.runtime, "LANG": "C.UTF-8",
                "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.runtime}/bus"}

    # Settings, as another process of the same user would change them.

    @property
    def settings_path(self):
        return os.path.join(self.path, "Library", "Preferences", IDENTIFIER + ".plist")

    def settings(self):
        try:
            with open(self.settings_path, "rb") as file:
                return plistlib.load(file)
        except FileNotFoundError:
            return {}

    def change_settings(self, **values):
        """Writes the named keys and leaves the others as they are; a value of None removes its key."""
        settings = self.settings()
        settings.update(values)
        settings = {key: value for key, value in settings.items() if value is not None}
        os.makedirs(os.path.dirname(self.settings_path), exist_ok=True)
        temporary = self.settings_path + ".desk"
        with open(temporary, "wb") as file:
            plistlib.dump(settings, file)
        os.replace(temporary, self.settings_path)

    def hours_around_now(self, **values):
        """Blocking hours that hold now and for the next two hours at least."""
        hour = time.localtime().tm_hour
        self.change_settings(blockStartHour=(hour - 1) % 24, blockEndHour=(hour + 3) % 24, blockingEnabled=True,
                             debugLoggingEnabled=True, **values)

    def end_the_hours(self):
        """The settings as they are when somebody moves the end of the hours to the hour that has begun."""
        hour = time.localtime().tm_hour
        self.change_settings(blockStartHour=(hour - 1) % 24, blockEndHour=hour)

    def record(self, name, content):
        """Puts a file into the folder of the records, as a night leaves it there."""
        folder = os.path.join(self.path, "Library", "Application Support", IDENTIFIER)
        os.makedirs(folder, mode=0o700, exist_ok=True)
        with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
            file.write(content)

    # Logs.

    def log_path(self, name):
        return os.path.join(self.path, "Library", "Logs", "Dormel", name)

    def log(self, name):
        """The lines of a log so far; none while it does not exist."""
        try:
            with open(self.log_path(name), encoding="utf-8", errors="replace") as file:
                text = file.read()
        except FileNotFoundError:
            return []
        return text.split("\n")[:-1]  # a line counts once it is whole

    def wait_for_line(self, name, matches, within, since=0, every=0.01):
        """The index and the text of the first line from `since` on that matches; NotSeen after `within` seconds.

        matches is a string that the line contains, or a test of the line.
        """
        test = (lambda line: matches in line) if isinstance(matches, str) else matches
        deadline = time.monotonic() + within * PATIENCE
        while True:
            for index, line in enumerate(self.log(name)[since:], since):
                if test(line):
                    return index, line
            if time.monotonic() >= deadline:
                raise NotSeen(f"not seen within {within:g} s in {name}: {matches}")
            time.sleep(every)

    def drawn_keys(self, since=0):
        """The labels of the last challenge that the debug log names from line `since` on; none if there is none."""
        for line in reversed(self.log("debug.log")[since:]):
            _, found, keys = line.partition("⟳ keys: ")
            if found:
                return keys.split(" ")
        return None
