#!/usr/bin/python3
"""The bundle in a bare system that has no Qt: tests/packages/bundle_test.py Dormel-VERSION-x86_64.tar.zst

Nothing in it is looked for elsewhere that the system does not have; it plays a night and a first run, offers to move itself,
and is updated from a server on this machine by an archive of its own kind. See tests/packages/run.
"""

import glob
import os
import re
import sys
import tempfile
import unittest

from story import ROOT, apt, expect, has_qt, measure, output, play_night, saw, size_of

sys.path.insert(0, os.path.join(ROOT, "tests", "desktop"))

from relocation_test import RETURN, RelocationTest, processes, until  # noqa: E402
from update_test import SIGN, UpdateTest  # noqa: E402


class Moves(RelocationTest):
    def test_opened_by_what_lies_on_top(self):
        desk = self.downloaded()
        process, _ = self.open(desk, command=[os.path.join(self.source, "Dormel")])
        desk.keyboard.tap(RETURN)
        until("the old process has ended", lambda: not processes.alive(process.pid), 30)
        process.wait()
        self.opened(desk)


class ByTheBundle(UpdateTest):
    """The updates come as what is given out: packed in the same way, as large."""

    def offer(self, newer, key, url, served):
        archive = os.path.join(served, "Dormel-9.9-x86_64.tar.zst")
        output("tar", "-C", os.path.dirname(newer), "--zstd", "-cf", archive, "Dormel.app")
        output(SIGN, "offer", archive, "--key", key, "--url", f"{url}/{os.path.basename(archive)}", "--version", "9.9",
               "--build", "99", "--feed", os.path.join(served, "feed.json"))
        self.saw(f"offered in {os.path.getsize(archive) / 1e6:.0f} MB")


def unpack(archive, folder):
    output("tar", "-C", folder, "-xf", archive)
    expect(os.listdir(folder) == ["Dormel.app"], "one bundle in the archive")
    return os.path.join(folder, "Dormel.app")


def links(bundle):
    """Every library that is wanted is found, and Qt's in the bundle. What the system's own libraries want is its affair."""
    astray, systems = [], set()
    files = [path for path in glob.glob(bundle + "/**", recursive=True) if os.path.isfile(path) and not os.path.islink(path)]
    programs = [path for path in files if open(path, "rb").read(4) == b"\x7fELF"]
    for path in programs:
        for name, place in re.findall(r"^\s+(\S+) => (not found|\S+)", output("ldd", path), re.MULTILINE):
            inside = os.path.realpath(place).startswith(os.path.realpath(bundle) + "/")
            if place == "not found" or (name.startswith("libQt6") and not inside):
                astray.append((path, name, place))
            elif not inside:
                systems.add(name)
    expect(not astray, f"every library in its place: {astray[:5]}")
    saw(f"{len(programs)} programs, libraries and plug-ins; of the system they take {' '.join(sorted(systems))}")


def main():
    if len(sys.argv) != 2:
        raise SystemExit(__doc__)
    archive = os.path.abspath(sys.argv[1])
    apt("install", "openbox", "openssl", "zstd")
    expect(not has_qt(), "a system without Qt")
    with tempfile.TemporaryDirectory() as folder:
        bundle = unpack(archive, folder)
        links(bundle)
        saw(f"{os.path.getsize(archive) / 1e6:.1f} MB to fetch, {size_of(bundle) / 1e6:.1f} MB in its place")
        os.environ["DORMEL_BUNDLE"] = bundle
        measure()
        play_night(os.path.join(ROOT, "build", "packages", "bundle-night"))
        loader = unittest.defaultTestLoader
        tests = unittest.TestSuite(map(loader.loadTestsFromTestCase, (Moves, ByTheBundle)))
        expect(unittest.TextTestRunner(verbosity=2).run(tests).wasSuccessful(), "it moves itself, and is updated")
    saw("it moved itself where it belongs, and was updated from a local server")


if __name__ == "__main__":
    main()
