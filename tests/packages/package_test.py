#!/usr/bin/python3
"""The Debian package in a bare system, from its installation to its purge: tests/packages/package_test.py FILE.deb

Installs it, plays a night and a first run with what was installed, upgrades it while it locks, uninstalls it for its user
through its window, purges it while another user's job is armed, and compares the disk with what was there before.
Changes the system that it runs on: see tests/packages/run.
"""

import contextlib
import glob
import os
import plistlib
import subprocess
import sys
import tempfile

from story import ROOT, apt, expect, has_qt, measure, output, play_night, quietly, saw, size_of

from desk import TAB, Bundle, Desk, processes, until
from desk.first_run import ByMouse, noon
from desk.night import Night
from desk.screen_reader import ScreenReader

INSTALLED = "/usr/lib/dormel/Dormel.app"
HIGHER = "99"
LEFT_SHIFT = 42
# What is no part of the system: the kernel, the tree, the test's own home; then where it keeps account of what it did, and
# what other packages keep up to date.
OUTSIDE = {"/proc", "/sys", "/dev", "/run", "/tmp", "/root", ROOT}
ACCOUNTS = {"/var/log", "/var/cache", "/var/lib/apt", "/var/lib/dpkg", "/usr/share/mime",
            "/usr/share/icons/hicolor/icon-theme.cache", "/usr/share/applications/mimeinfo.cache"}


def disk(without=frozenset()):
    """Every path of the system."""
    found = set()
    for top, names, files in os.walk("/"):
        names[:] = [name for name in names if os.path.join(top, name) not in OUTSIDE | without]
        found.update(path for name in names + files if (path := os.path.join(top, name)) not in OUTSIDE | without)
    return found


def owned():
    """The paths that belong to a package."""
    paths = set()
    for name in glob.glob("/var/lib/dpkg/info/*.list"):
        with open(name, encoding="utf-8") as file:
            paths.update(path.rstrip("\n") for path in file)
    return paths | {"/usr" + path for path in paths}  # some name files by /lib, which leads to /usr/lib


def raised(package, folder):
    """The same package with a higher build number."""
    contents = os.path.join(folder, "contents")
    output("dpkg-deb", "--raw-extract", package, contents)
    info = contents + INSTALLED + "/Contents/Info.plist"
    with open(info, "rb") as file:
        properties = {**plistlib.load(file), "CFBundleVersion": HIGHER}
    with open(info, "wb") as file:
        plistlib.dump(properties, file)
    control = os.path.join(contents, "DEBIAN", "control")
    with open(control, encoding="utf-8") as file:
        lines = [f"Version: {line.split()[1].split('-')[0]}-{HIGHER}\n" if line.startswith("Version:") else line
                 for line in file]
    with open(control, "w", encoding="utf-8") as file:
        file.writelines(lines)
    file = os.path.join(folder, "dormel.deb")
    output("dpkg-deb", "--root-owner-group", "--build", contents, file)
    return file


def install(package):
    before = output("dpkg-query", "-W").count("\n")
    apt("install", package)
    saw(f"apt install {os.path.basename(package)}: {output('dpkg-query', '-W').count(chr(10)) - before} packages")
    missing = [place for place in ("/usr/bin/dormel", "/usr/share/man/man1/dormel.1.gz", "/usr/share/applications/*.desktop",
                                   "/usr/share/metainfo/*dormel*", "/usr/share/icons/hicolor/scalable/apps/*dormel*.svg",
                                   "/usr/share/gnome-shell/extensions/dormel@*/metadata.json") if not glob.glob(place)]
    expect(not missing, f"{missing} is installed")
    with open(glob.glob("/usr/share/applications/*dormel*.desktop")[0], encoding="utf-8") as file:
        expect("\nComment[de]=" in file.read(), "the menus are told what it is in German")
    saw(f"{size_of(INSTALLED) / 1e6:.1f} MB in {INSTALLED}")
    saw(f"{output('dormel', '--version').strip()}, its manual, its entry in the menus, its extension for everybody")


def upgrade_while_locked(package):
    with Desk(manager=True) as desk, tempfile.TemporaryDirectory() as folder:
        night = Night(desk, Bundle(desk).install(), quietly)
        night.arm()
        locked, exe = night.pid, f"/proc/{night.pid}/exe"
        apt("install", raised(package, folder))
        expect(processes.alive(locked) and os.readlink(exe).endswith(" (deleted)"), "the lock goes on, its file replaced")
        expect(desk.eyes.covered({locked}) and not desk.keys_reach_the_document(), "the lock holds during the upgrade")
        saw(f"upgraded under process {locked}, which goes on locking")
        night.kill()
        expect(os.readlink(f"/proc/{night.pid}/exe") == night.bundle.program, "what is started next is the new program")
        saw(f"killed; process {night.pid} is the new one: {night.bundle.run('--version').stdout.strip()}")
        night.end()


def uninstall_in_its_window():
    """By the button, for this user; the package stays, and it is said how that goes."""
    with Desk(manager=True, windows="openbox", extra={"TZ": noon()}) as desk, contextlib.closing(ScreenReader(desk)) as reader:
        bundle = Bundle(desk).install()
        bundle.setup()
        process = bundle.start(environment=reader.environment(), output=subprocess.DEVNULL)
        hand = ByMouse(desk, reader)
        until("the window has the keyboard",
              lambda: desk.clients.active() in [client.id for client in desk.clients.of(process.pid)], 10)
        desk.keyboard.chord(LEFT_SHIFT, TAB)  # to the last control, which the window scrolls to
        hand.press("Uninstall Dormel")
        hand.press("Uninstall")
        reader.wait_for("Dormel uninstalled", 10)
        until("how the package is removed",
              lambda: any("sudo apt remove dormel" in e.name + e.description for e in reader.elements()), 5)
        hand.press("OK")
        expect(process.wait(10) == 0, "it ends with status 0")
        left = [os.path.join(top, name) for top, names, files in os.walk(desk.home.path) for name in names + files
                if "dormel" in name.lower()]
        expect(not left and os.path.exists(bundle.program), f"the package's files are left, and nothing at home: {left}")
        saw("uninstalled for its user, who was told: sudo apt remove dormel")


def purge_while_armed(before):
    with Desk(manager=True) as desk:
        bundle = Bundle(desk).install()
        desk.home.change_settings(blockStartHour=0, blockEndHour=1, blockingEnabled=True)
        bundle.setup()
        apt("purge", "dormel")
        apt("autoremove", "--purge")
        unit = f"{desk.home.identifier}.service"
        if desk.manager is not None:
            desk.manager.ask("start", unit)  # as its timer would
            until("the orphaned job comes to rest",
                  lambda: desk.manager.show(unit, "ActiveState")["ActiveState"] in ("inactive", "failed"), 5)
            saw("an armed job whose program is gone starts nothing")
        # What came along for it and something else now likes to have stays, as with any package.
        left = sorted(disk(ACCOUNTS) - before - owned()) + [path for path in disk() if "dormel" in path.lower()]
    expect(not left, f"nothing is left; there is {left[:20]}")
    saw("purged: nothing of it is on the disk")


def main():
    if len(sys.argv) != 2:
        raise SystemExit(__doc__)
    package = os.path.abspath(sys.argv[1])
    os.environ["DORMEL_INSTALLED"] = INSTALLED
    apt("install", "openbox")
    expect(not has_qt(), "a system without Qt")
    before = disk(ACCOUNTS)
    saw("a Debian " + output("cat", "/etc/debian_version").strip() + " without Qt and without compilers")
    install(package)
    measure()
    play_night(os.path.join(ROOT, "build", "packages", "night"))
    upgrade_while_locked(package)
    uninstall_in_its_window()
    purge_while_armed(before)


if __name__ == "__main__":
    main()
