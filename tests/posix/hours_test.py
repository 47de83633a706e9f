"""tools/hours: the hours that ./run asks for are the hours that the program goes by."""

import os
import pathlib
import plistlib
import subprocess
import tempfile
import unittest

HOURS = pathlib.Path(__file__).resolve().parents[2] / "tools" / "hours"


def settings(start):
    return plistlib.dumps({"blockStartHour": start, "blockEndHour": 6})


class Hours(unittest.TestCase):
    def test_which_file_counts(self):
        rows = [("neither", None, None, "0:00 to 6:00"), ("the file", settings(22), settings(21), "22:00 to 6:00"),
                ("it is gone", None, settings(21), "21:00 to 6:00"),
                ("it is cut short", settings(22)[:-20], settings(21), "21:00 to 6:00"),
                ("it is empty, the copy is noise", b"", b"\xff\0", "0:00 to 6:00"),
                ("it is no dictionary", plistlib.dumps([]), settings(21), "21:00 to 6:00")]
        for name, file, copy, hours in rows:
            with self.subTest(name), tempfile.TemporaryDirectory() as home:
                base = pathlib.Path(home, "Library/Preferences/com.example.test.mac.plist")
                base.parent.mkdir(parents=True)
                for path, content in ((base, file), (base.with_name(base.name + ".good"), copy)):
                    if content is not None:
                        path.write_bytes(content)
                told = subprocess.run([HOURS], env={**os.environ, "HOME": home, "DORMEL_APP_ID_BASE": "com.example.test"},
                                      text=True, stdout=subprocess.PIPE, check=True).stdout
                self.assertEqual(told.strip(), hours)


if __name__ == "__main__":
    unittest.main()
