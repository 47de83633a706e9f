"""What the tests of packages share: a private desktop in a bare system, and saying what was seen."""

import os
import statistics
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tools"))

from desk import Bundle, Desk, NotSeen, until  # noqa: E402

STARTS = 11


def saw(what):
    print(f"  {what}", flush=True)


def expect(condition, what):
    if not condition:
        raise NotSeen(what)


def output(*command, **options):
    """What the command printed; what it complained of, when it failed."""
    done = subprocess.run(command, capture_output=True, text=True, check=False, stdin=subprocess.DEVNULL, **options)
    expect(done.returncode == 0, f"{' '.join(command)} succeeds (status {done.returncode}):\n{done.stdout[-2000:]}"
                                 f"{done.stderr[-2000:]}")
    return done.stdout


def apt(*arguments):
    return output("apt-get", "-q", "-y", *arguments, env={**os.environ, "DEBIAN_FRONTEND": "noninteractive"})


def has_qt():
    return any(name.startswith("libQt6") for folder in ("/usr/lib/x86_64-linux-gnu", "/usr/lib")
               for name in os.listdir(folder))


def play_night(out, **environment):
    """A night and a first run by tools/night, which prints them."""
    night = os.path.join(ROOT, "tools", "night")
    began = time.monotonic()
    done = subprocess.run([night, "--out", out], env={**os.environ, **environment}, check=False)
    expect(done.returncode == 0, "a night and a first run")
    saw(f"a night and a first run, in {time.monotonic() - began:.0f} s")


def measure():
    """How long a lock and the settings' window take to be there."""
    with Desk() as desk:
        bundle = Bundle(desk).install()
        desk.home.hours_around_now(onboardingComplete=True)

        def start(seen, *arguments):
            times = []
            for _ in range(STARTS):
                began = time.monotonic()
                process = bundle.start(*arguments, output=subprocess.DEVNULL)
                until("it is there", lambda: seen(process.pid), 10, every=0.001)
                times.append(1000 * (time.monotonic() - began))
                process.kill()
                process.wait()
                until("it is gone", lambda: not desk.eyes.windows_of(process.pid), 5)
            return f"{statistics.median(times):.0f} ms ({min(times):.0f} to {max(times):.0f})"

        saw(f"{STARTS} starts: the lock covers both screens after {start(desk.eyes.covered, '--scheduled')}, "
            f"the settings' window is there after {start(desk.eyes.windows_of)}")


def size_of(folder):
    """Bytes of its files."""
    return sum(os.lstat(os.path.join(top, name)).st_size for top, _, names in os.walk(folder) for name in names)


def quietly(*_):
    """For a Night whose steps nobody follows."""
