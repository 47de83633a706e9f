"""The job scheduler, whole: the real command line, real processes, under each of its two back ends.

Usage: python3 -m unittest jobs_test, with DORMEL_BUILD naming the build folder
"""

import os
import pathlib
import plistlib
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))

from desk import Home, scheduler, until  # noqa: E402
from desk.processes import alive  # noqa: E402

LAUNCHCTL = os.path.join(os.environ["DORMEL_BUILD"], "Dormel.app/Contents/Helpers/launchctl")
DOMAIN = f"gui/{os.getuid()}"
FAKETIME = "/usr/lib/x86_64-linux-gnu/faketime/libfaketimeMT.so.1"

# What a job does, run by run: line n of the plan for its n-th run, the last line from then on.
PROGRAM = r"""#!/bin/sh
here=$1
printf '%s %s %s\n' "$(date +%s.%N)" "$$" "$DISPLAY" >> "$here/runs"
shift
printf '%s\n' "$@" > "$here/arguments"
echo "to the output"
echo "to the error" >&2
n=$(wc -l < "$here/runs")
plan=$(sed -n "${n}p" "$here/plan")
[ -n "$plan" ] || plan=$(tail -n 1 "$here/plan")
case $plan in
  stay) exec sleep 1000 ;;
  *bootout*) eval "$plan"; echo $? > "$here/left"; exit 1 ;;
  *) eval "$plan" ;;
esac
"""


class Job:
    """A job of a test: its folder, its property list, and what its program wrote about its runs."""

    count = 0

    def __init__(self, home, folder=None, plan=("stay",), start=(0, 0), arguments=("--scheduled",), keys=None):
        Job.count += 1
        self.label = f"com.orvane.dormel.test-{os.getpid()}-{Job.count}"
        self.target = f"{DOMAIN}/{self.label}"
        self.home = home
        self.folder = folder or home / f"job-{Job.count}"
        self.folder.mkdir(parents=True, exist_ok=True)
        self.program = self.folder / "Sleeper.app" / "Contents" / "Linux" / "Sleeper"
        self.program.parent.mkdir(parents=True)
        self.program.write_text(PROGRAM)
        self.program.chmod(0o755)
        self.log = home / "Logs" / self.label / "job.log"
        self.entry = home / ".config" / "autostart" / f"{self.label}.desktop"
        self.plan(*plan)
        self.plist = self.folder / f"{self.label}.plist"
        self.content = {"Label": self.label,
                        "ProgramArguments": [str(self.program), str(self.folder), *arguments],
                        "StartCalendarInterval": {"Hour": start[0], "Minute": start[1]},
                        "RunAtLoad": True, "KeepAlive": {"SuccessfulExit": False},
                        "StandardOutPath": str(self.log), "StandardErrorPath": str(self.log),
                        "AssociatedBundleIdentifiers": [self.label], **(keys or {})}
        self.write()

    def write(self):
        self.plist.write_bytes(plistlib.dumps(self.content))

    def plan(self, *lines):
        (self.folder / "plan").write_text("".join(line + "\n" for line in lines))

    def runs(self):
        """(moment, pid, display) of each run so far."""
        try:
            lines = (self.folder / "runs").read_text().splitlines()
        except FileNotFoundError:
            return []
        runs = [line.split(" ") for line in lines]
        return [(float(moment), int(pid), display) for moment, pid, display in runs]

    def wait_for_run(self, number=1, timeout=10.0):
        return until(f"run {number}", lambda: len(self.runs()) >= number and self.runs()[number - 1], timeout)


class JobModel:
    """The tests of both back ends. A back end gives `home`, `environment` and `say`."""

    tool = LAUNCHCTL
    displays = 0

    # --- what the tests are made of

    def job(self, *arguments, **options):
        job = Job(self.home, *arguments, **options)
        self.addCleanup(self.call, "bootout", job.target)
        return job

    def call(self, *arguments, tool=None, **variables):
        environment = {**self.environment, **variables}
        environment = {name: value for name, value in environment.items() if value is not None}
        begun = time.monotonic()
        result = subprocess.run([tool or self.tool, *map(str, arguments)], env=environment, text=True, check=False,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        result.seconds = time.monotonic() - begun
        return result

    def expect(self, status, *arguments, **variables):
        result = self.call(*arguments, **variables)
        self.assertEqual(result.returncode, status, f"{arguments}: {result.stdout}{result.stderr}")
        return result

    def bootstrap(self, job, **variables):
        return self.expect(0, "bootstrap", DOMAIN, job.plist, **variables)

    def printed(self, job, **variables):
        """What print tells, as a dictionary."""
        text = self.expect(0, "print", job.target, **variables).stdout
        return dict(re.findall(r"^\t(.*?) = (.*)$", text, re.MULTILINE))

    def use_bundle_in(self, folder):
        """From now on the helper of a bundle that lies there."""
        helpers = folder / "Contents" / "Helpers"
        helpers.mkdir(parents=True)
        self.tool = shutil.copy(LAUNCHCTL, helpers)

    def left_behind(self, job):
        return [path for root in (".config", ".local") for path in (self.home / root).rglob(f"*{job.label}*")]

    def display(self):
        """The name of an X display that takes connections until the test's end."""
        JobModel.displays += 1
        number = 30000 + os.getpid() % 10000 * 3 + JobModel.displays
        server = socket.socket(socket.AF_UNIX)
        self.addCleanup(server.close)
        server.bind(f"\0/tmp/.X11-unix/X{number}")
        server.listen(100)
        return f":{number}"

    # --- the tests

    def test_loaded_and_unloaded(self):
        job = self.job()
        self.expect(113, "print", job.target)
        begun = time.time()
        result = self.bootstrap(job)
        moment, pid, _ = job.wait_for_run()
        self.say(f"bootstrap {result.seconds * 1000:.0f} ms, program running {(moment - begun) * 1000:.0f} ms after it began")
        self.assertEqual(self.printed(job)["pid"], str(pid))
        self.assertEqual(self.printed(job)["path"], str(job.plist))
        self.expect(37, "bootstrap", DOMAIN, job.plist)
        result = self.expect(0, "bootout", job.target)
        self.say(f"bootout {result.seconds * 1000:.0f} ms")
        self.assertFalse(alive(pid))
        self.assertEqual(self.left_behind(job), [])
        self.expect(113, "print", job.target)
        self.expect(3, "bootout", job.target)
        for _ in range(5):  # as a changed schedule does
            self.bootstrap(job)
            self.expect(0, "bootout", job.target)
        self.assertEqual(self.left_behind(job), [])

    def test_restarted_after_every_end_but_a_good_one(self):
        ends = ["exit 1", "exit 255", "kill -KILL $$", "kill -TERM $$", "kill -HUP $$", "kill -PIPE $$",
                "kill -SEGV $$", "exit 3", "exit 1", "exit 1", "exit 1", "exit 1", "exit 0"]
        job = self.job(plan=ends)
        self.bootstrap(job)
        job.wait_for_run(len(ends), timeout=2.0 * len(ends))
        moments = [run[0] for run in job.runs()]
        gaps = [after - before for before, after in zip(moments, moments[1:])]
        self.say(f"{len(gaps)} restarts, {min(gaps):.2f} to {max(gaps):.2f} s apart")
        self.assertLess(max(gaps), 2.0)
        self.assertGreater(min(gaps), 0.9)
        time.sleep(2.5)  # there is nothing to wait for but the absence of another start
        self.assertEqual(len(job.runs()), len(ends))
        self.expect(0, "print", job.target)

    def test_output_is_appended(self):
        job = self.job(plan=["exit 1", "exit 1", "stay"])
        job.log.parent.mkdir(parents=True)
        job.log.write_text("from before\n")
        self.bootstrap(job)
        job.wait_for_run(2)
        self.assertEqual(job.log.read_text(), "from before\n" + 2 * "to the output\nto the error\n")
        shutil.rmtree(job.log.parent)  # as cleaning tools do
        pid = job.wait_for_run(3)[1]
        self.assertEqual(until("the log", lambda: job.log.exists() and job.log.stat().st_size and
                               job.log.read_text(), 10), "to the output\nto the error\n")
        # A log that cannot be had must not cost the start.
        shutil.rmtree(job.log.parent)
        job.log.parent.write_text("in the way")
        os.kill(pid, signal.SIGKILL)
        job.wait_for_run(4)

    def test_any_characters_in_paths_and_arguments(self):
        folder = self.home / "Nächte 100% 'um' \"$HOME\" \\n %h; ${X} `id` #"
        arguments = ["--scheduled", "", " ", "$HOME", "$$", "${HOME}", "%h%%", "a\"b", "a'b", "\\", "\\x41", ";", "#", "é漢",
                     "a\nb\tc"]
        self.use_bundle_in(folder)
        job = self.job(folder=folder, arguments=arguments)
        job.content["StandardOutPath"] = job.content["StandardErrorPath"] = str(folder / "Log s" / "%h $x.log")
        job.write()
        self.bootstrap(job)
        pid = job.wait_for_run()[1]
        until("the output", lambda: "error" in (folder / "Log s" / "%h $x.log").read_text(), 10)
        self.assertEqual((folder / "arguments").read_text(), "".join(a + "\n" for a in arguments))
        self.assertEqual(self.printed(job)["path"], str(job.plist))
        # The autostart entry's command line, read as its readers do: a string first, then a command line in
        # which the quoting rules are those of the shell.
        entry = job.entry.read_text()
        command = re.search("^Exec=(.*)$", entry, re.MULTILINE)[1].replace("\\\\", "\\").replace("%%", "%")
        words = subprocess.run(["sh", "-c", f"printf '%s\\0' {command}"], stdout=subprocess.PIPE, check=True)
        self.assertEqual(words.stdout.decode().split("\0")[:-1],
                         ["/usr/bin/env", self.tool, "login", DOMAIN, str(job.plist)])
        self.assertIn("\nName=Sleeper\n", entry)
        self.expect(0, "bootout", job.target)
        self.assertFalse(alive(pid))

    def test_login(self):
        job = self.job(plan=["exit 0", "stay"])
        self.bootstrap(job)
        job.wait_for_run()
        until("its end", lambda: "pid" not in self.printed(job), 10)
        self.expect(0, "login", DOMAIN, job.plist)
        pid = job.wait_for_run(2)[1]
        self.expect(0, "login", DOMAIN, job.plist)
        self.assertEqual(self.printed(job)["pid"], str(pid))  # the same display: left alone
        self.expect(0, "login", DOMAIN, job.plist, DISPLAY="elsewhere:2")
        _, moved, display = job.wait_for_run(3)
        self.assertEqual(display, "elsewhere:2")
        self.assertFalse(alive(pid))
        # A login finds the job as its property list describes it by now.
        job.content["StartCalendarInterval"] = {"Hour": 23, "Minute": 45}
        job.write()
        self.expect(0, "login", DOMAIN, job.plist, DISPLAY="elsewhere:2")
        self.assertIn(" 23:45:00", self.printed(job, DISPLAY="elsewhere:2")["next start"])
        self.assertEqual(self.printed(job, DISPLAY="elsewhere:2")["pid"], str(moved))
        job.plist.unlink()
        self.expect(113, "login", DOMAIN, job.plist)

    def test_no_graphical_session(self):
        job = self.job()
        self.bootstrap(job, DISPLAY=None)
        self.assertNotIn("pid", self.printed(job, DISPLAY=None))
        self.assertEqual(job.runs(), [])
        self.expect(0, "login", DOMAIN, job.plist, DISPLAY="somewhere:1")
        self.assertEqual(job.wait_for_run()[2], "somewhere:1")

    def test_waits_for_a_display_that_went_away(self):
        number = 20000 + os.getpid() % 10000
        path = f"/tmp/.X11-unix/X{number}"
        os.makedirs(os.path.dirname(path), exist_ok=True)
        job = self.job()
        self.bootstrap(job, DISPLAY=f":{number}.0")
        pid = int(self.printed(job)["pid"])
        with socket.socket(socket.AF_UNIX) as server:
            server.bind(path)
            self.addCleanup(os.unlink, path)
            time.sleep(0.2)  # a socket on which nobody listens yet
            self.assertEqual(job.runs(), [])
            self.assertIn(f"Sleeper: :{number}.0 takes no connections; waiting", job.log.read_text())
            server.listen()
            begun = time.time()
            run = job.wait_for_run()
        self.assertEqual(run[1], pid)
        self.say(f"started {(run[0] - begun) * 1000:.0f} ms after its display came back")

    def test_goes_by_another_hour_or_display(self):
        """What the program asks when it is opened, and mends by loading the job anew."""
        first, second = self.display(), self.display()
        job = self.job(start=(22, 0))
        self.bootstrap(job, DISPLAY=first)
        pid = job.wait_for_run()[1]
        for display in (first, None, "localhost:10.0"):  # the same, a terminal without one, ssh -X
            self.assertEqual(self.printed(job, DISPLAY=display)["pid"], str(pid))
        self.expect(0, "login", DOMAIN, job.plist, DISPLAY="localhost:10.0")
        self.assertEqual(self.printed(job, DISPLAY=first)["pid"], str(pid))
        self.expect(113, "print", job.target, DISPLAY=second)
        self.bootstrap(job, DISPLAY=second)
        self.assertEqual(job.wait_for_run(2)[2], second)
        job.content["StartCalendarInterval"] = {"Hour": 23, "Minute": 0}
        job.write()
        self.expect(113, "print", job.target, DISPLAY=second)
        self.bootstrap(job, DISPLAY=second)
        self.assertIn(" 23:00:00", self.printed(job, DISPLAY=second)["next start"])

    def test_switched_off_by_the_user(self):
        for line in ("Hidden=true", "X-GNOME-Autostart-enabled = false"):
            with self.subTest(line):
                job = self.job()
                self.bootstrap(job)
                pid = job.wait_for_run()[1]
                entry = job.entry.read_text()
                job.entry.write_text(entry.replace("X-GNOME-Autostart-enabled=true", line))
                self.expect(113, "print", job.target)
                os.kill(pid, signal.SIGKILL)
                time.sleep(2)  # for a restart that must not come
                self.assertEqual(len(job.runs()), 1)
                self.expect(125, "login", DOMAIN, job.plist)
                self.expect(0, "bootout", job.target)
                self.expect(125, "bootstrap", DOMAIN, job.plist)
                self.assertIn(line, job.entry.read_text())
                self.assertEqual(len(job.runs()), 1)
                job.entry.write_text(entry)
                self.bootstrap(job)
                job.wait_for_run(2)

    def test_parts_that_vanished(self):
        job = self.job()
        self.bootstrap(job)
        pid = job.wait_for_run()[1]
        job.entry.unlink()
        self.expect(113, "print", job.target)
        self.bootstrap(job)  # repairs
        self.assertEqual(self.printed(job)["pid"], str(pid))
        job.plist.unlink()
        self.expect(113, "print", job.target)
        os.kill(pid, signal.SIGKILL)
        time.sleep(2)  # for a restart that must not come
        self.assertEqual(len(job.runs()), 1)
        self.expect(0, "bootout", job.target)
        self.assertEqual(self.left_behind(job), [])
        job.write()
        self.bootstrap(job)
        job.wait_for_run(2)
        aside = job.program.rename(job.program.with_name("aside"))
        self.expect(113, "print", job.target)
        os.kill(job.runs()[1][1], signal.SIGKILL)
        time.sleep(2)  # for a restart that must not come
        self.assertEqual(len(job.runs()), 2)
        aside.rename(job.program)
        self.assertNotIn("pid", self.printed(job))  # it gave up
        self.expect(0, "bootout", job.target)
        self.bootstrap(job)
        job.wait_for_run(3)

    def test_armed_by_a_copy_that_vanishes(self):
        job = self.job()
        own = job.program.parent.parent / "Helpers" / "launchctl"
        old = self.home / "Downloads" / f"{job.label}.app" / "Contents" / "Helpers" / "launchctl"
        for place in (own, old):
            place.parent.mkdir(parents=True)
            shutil.copy2(LAUNCHCTL, place)
        self.expect(0, "bootstrap", DOMAIN, job.plist, tool=old)
        pid = job.wait_for_run()[1]
        shutil.rmtree(old.parent)
        mapped = subprocess.run(["grep", "-l", str(old.parent), *map(str, pathlib.Path("/proc").glob("[0-9]*/maps"))],
                                text=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False).stdout
        self.assertEqual(mapped, "", "nothing runs from the old place, which may be on a disk that is taken out")
        os.kill(pid, signal.SIGKILL)
        pid = job.wait_for_run(2)[1]
        self.assertIn(f'"{own}" "login"', job.entry.read_text())
        self.expect(0, "login", DOMAIN, job.plist, tool=own, DISPLAY="elsewhere:3")
        self.assertEqual(job.wait_for_run(3)[2], "elsewhere:3")
        self.expect(0, "bootout", job.target, tool=own)
        self.assertEqual(self.left_behind(job), [])

    def test_a_job_that_takes_itself_out(self):
        job = self.job()
        job.plan(f"'{LAUNCHCTL}' bootout {job.target}")
        self.bootstrap(job)
        until("the caller's next line", (job.folder / "left").exists, 10)
        self.assertEqual((job.folder / "left").read_text(), "0\n")
        pid = job.runs()[0][1]
        until("its end", lambda: not alive(pid), 10)
        self.expect(113, "print", job.target)
        time.sleep(2)  # for a restart that must not come
        self.assertEqual(len(job.runs()), 1)
        until("tidiness", lambda: self.left_behind(job) == [], 10)

    def test_refusals(self):
        job = self.job()
        faults = {"no label": {"Label": None}, "odd label": {"Label": "a b"}, "escaping label": {"Label": "../x"},
                  "no program": {"ProgramArguments": []}, "relative program": {"ProgramArguments": ["sleep"]},
                  "hour": {"StartCalendarInterval": {"Hour": 24, "Minute": 0}},
                  "minute": {"StartCalendarInterval": {"Hour": 1}},
                  "weekday": {"StartCalendarInterval": {"Hour": 1, "Minute": 0, "Weekday": 1}},
                  "type": {"RunAtLoad": "yes"}, "keep alive": {"KeepAlive": {"Crashed": True}}}
        for name, change in faults.items():
            with self.subTest(name):
                content = {k: v for k, v in {**job.content, **change}.items() if v is not None}
                path = job.folder / "faulty.plist"
                path.write_bytes(plistlib.dumps(content))
                self.expect(5, "bootstrap", DOMAIN, path)
        for name, damaged in {"empty": b"", "cut off": job.plist.read_bytes()[:200], "noise": bytes(range(256))}.items():
            with self.subTest(name):
                path = job.folder / "damaged.plist"
                path.write_bytes(damaged)
                self.expect(5, "bootstrap", DOMAIN, path)
        self.expect(5, "bootstrap", DOMAIN, job.folder / "missing.plist")
        self.expect(5, "bootstrap", DOMAIN, job.plist, XDG_CONFIG_HOME=str(job.plist))
        self.expect(64, "bootstrap", "gui/4294967294", job.plist)
        self.expect(64, "bootout", DOMAIN)
        self.expect(64)
        self.assertEqual(job.runs(), [])

    def test_the_start_time_comes(self):
        """Named to run late in the class: the job was armed before its first test."""
        run = self.early.wait_for_run(timeout=75)
        late = run[0] - self.early_moment
        self.say(f"start time {time.strftime('%H:%M:%S', time.localtime(self.early_moment))}: "
                 f"program running {late * 1000:.0f} ms after it")
        self.assertGreaterEqual(late, 0)
        self.assertLess(late, 1)
        self.assertEqual(len(self.early.runs()), 1)

    # --- the machine

    @classmethod
    def say(cls, text):
        print(f"{time.strftime('%H:%M:%S')} {cls.__name__}: {text}", flush=True)

    @classmethod
    def make_home(cls):
        cls.folder = tempfile.mkdtemp(prefix="dormel-jobs-")
        cls.desk_home = Home(cls.folder)
        cls.home = pathlib.Path(cls.desk_home.path)
        cls.environment = {**cls.desk_home.environment(), "DISPLAY": "nowhere:1"}

    @classmethod
    def arm_early_job(cls):
        cls.early_moment = (int(time.time()) // 60 + 1) * 60
        if cls.early_moment - time.time() < 2:
            cls.early_moment += 60
        local = time.localtime(cls.early_moment)
        cls.early = Job(cls.home, start=(local.tm_hour, local.tm_min), plan=["exit 0"], keys={"RunAtLoad": False})
        subprocess.run([LAUNCHCTL, "bootstrap", DOMAIN, cls.early.plist], env=cls.environment, check=True)

    @classmethod
    def clear_away(cls):
        subprocess.run([LAUNCHCTL, "bootout", cls.early.target], env=cls.environment, check=False)


class OnSystemd(JobModel, unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.make_home()
        why = scheduler.available()
        if why is not None:
            raise unittest.SkipTest(why)
        cls.manager = scheduler.UserManager(cls.desk_home, cls.folder).start()
        cls.arm_early_job()

    @classmethod
    def tearDownClass(cls):
        cls.clear_away()
        cls.manager.stop()
        shutil.rmtree(cls.folder, ignore_errors=True)

    def variables_of(self, pid):
        # Empty while it is between two programs.
        block = until("the program's variables", pathlib.Path(f"/proc/{pid}/environ").read_text, 5)
        return dict(entry.split("=", 1) for entry in block.split("\0") if entry)

    def test_one_shells_variables_are_the_jobs_alone(self):
        before = self.manager.ask("show-environment")
        job = self.job()
        odd = {"LC_ALL": "C.UTF-8", "LANG": "en_US 100% \"$HOME\" \\x41", "XDG_CURRENT_DESKTOP": "One:Two"}
        self.bootstrap(job, **odd)
        variables = self.variables_of(job.wait_for_run()[1])
        self.assertEqual({name: variables.get(name) for name in odd}, odd)
        self.assertEqual(self.manager.ask("show-environment"), before)

    def test_the_zone_of_program_and_timer(self):
        for zone, named in (("Pacific/Auckland", "Pacific/Auckland"), (":UTC", "UTC"), ("XYZ-14", None), (None, None)):
            with self.subTest(zone):
                job = self.job(start=(21, 5))
                self.bootstrap(job, TZ=zone)
                self.printed(job, TZ=zone)
                timer = (self.home / ".config/systemd/user" / f"{job.label}.timer").read_text()
                self.assertIn(f"\nOnCalendar=*-*-* 21:05:00{' ' + named if named else ''}\n", timer)
                self.assertEqual(self.variables_of(job.wait_for_run()[1]).get("TZ"), zone if named else None)
        self.manager.ask("set-environment", "TZ=Asia/Tokyo")
        self.addCleanup(self.manager.ask, "unset-environment", "TZ")
        job = self.job(start=(21, 5))
        self.bootstrap(job, TZ=None)
        self.assertEqual(self.variables_of(job.wait_for_run()[1]).get("TZ"), "Asia/Tokyo")
        self.assertIn("21:05:00 Asia/Tokyo", (self.home / ".config/systemd/user" / f"{job.label}.timer").read_text())

    def test_another_display_of_the_session(self):
        """The one that it was loaded on is gone: a nested server that was closed."""
        job = self.job()
        session = self.display()
        self.manager.ask("set-environment", f"DISPLAY={session}")
        self.addCleanup(self.manager.ask, "unset-environment", "DISPLAY")
        self.bootstrap(job, DISPLAY=":29999")
        self.assertEqual(job.wait_for_run()[2], session)
        self.assertIn(f":29999 takes no connections; going to {session}", job.log.read_text())

    def test_units(self):
        job = self.job(start=(21, 5))
        self.bootstrap(job)
        shown = self.manager.ask("show", f"{job.label}.timer", "-p", "NextElapseUSecRealtime,UnitFileState,Persistent")
        self.say(" ".join(shown.split()))
        self.assertIn(" 21:05:00 ", shown)
        self.assertIn("UnitFileState=enabled", shown)
        self.assertIn("Persistent=yes", shown)
        files = [str(self.home / ".config/systemd/user" / f"{job.label}.{kind}") for kind in ("service", "timer")]
        verified = subprocess.run(["systemd-analyze", "--user", "verify", *files], env=self.environment, text=True,
                                  stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        self.assertNotIn(job.label, verified.stdout)
        self.manager.ask("stop", f"{job.label}.timer")
        self.expect(113, "print", job.target)

    def test_a_login_through_the_session_manager(self):
        """Desktops that leave their autostart entries to systemd: its own reading of ours must start the job."""
        self.use_bundle_in(self.home / "Night's Dormel.app")
        job = self.job(folder=self.home / "Night's work", plan=["exit 0", "stay"])
        self.bootstrap(job)
        job.wait_for_run()
        self.manager.ask("daemon-reload")
        self.manager.ask("set-environment", "DISPLAY=nowhere:1")  # as desktops do
        self.addCleanup(self.manager.ask, "unset-environment", "DISPLAY")
        escaped = job.label.replace("-", "\\x2d")
        self.manager.ask("start", f"app-{escaped}@autostart.service")
        job.wait_for_run(2)

    def test_a_manager_for_another_home(self):
        """It does not read our units, so the job goes to the supervisor, and the other home stays untouched."""
        home = self.home / "other"
        job = Job(home)
        variables = {"HOME": str(home)}
        self.addCleanup(self.call, "bootout", job.target, **variables)
        self.bootstrap(job, **variables)
        job.wait_for_run()
        self.assertIn("supervisor", self.expect(0, "print", job.target, **variables).stdout)
        self.assertEqual(self.left_behind(job), [])
        self.expect(0, "bootout", job.target, **variables)


class OnSupervisor(JobModel, unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.make_home()
        cls.arm_early_job()

    @classmethod
    def tearDownClass(cls):
        cls.clear_away()
        shutil.rmtree(cls.folder, ignore_errors=True)

    def supervisor_of(self, job):
        return int(self.printed(job)["scheduler"].split()[1])

    def test_the_supervisor_is_killed(self):
        job = self.job(plan=["stay", "exit 1", "stay"])
        self.bootstrap(job)
        pid = job.wait_for_run()[1]
        killed = self.supervisor_of(job)
        os.kill(killed, signal.SIGKILL)
        until("its end", lambda: not alive(killed), 10)
        self.expect(113, "print", job.target)
        self.assertTrue(alive(pid))  # what covers the screens goes on doing so
        self.bootstrap(job)
        self.assertEqual(self.printed(job)["pid"], str(pid))
        self.assertEqual(len(job.runs()), 1)
        begun = time.time()
        os.kill(pid, signal.SIGKILL)
        self.assertLess(job.wait_for_run(2)[0] - begun, 2)
        job.wait_for_run(3)
        # Killed again, and the job taken out without anybody to look after it.
        os.kill(self.supervisor_of(job), signal.SIGKILL)
        self.expect(0, "bootout", job.target)
        until("the end of the orphan", lambda: not alive(job.runs()[2][1]), 10)
        self.assertEqual(self.left_behind(job), [])

    @unittest.skipUnless(os.path.exists(FAKETIME), "libfaketime is not installed")
    def test_the_clock_is_set(self):
        """Past the start time. What wakes the supervisor is the kernel's notice, given for a step of no length."""
        stamp = self.home / "clock"
        stamp.write_text("@2030-08-04 20:00:00\n")
        job = self.job(start=(22, 0), plan=["exit 0"], keys={"RunAtLoad": False})
        self.bootstrap(job, FAKETIME_TIMESTAMP_FILE=str(stamp), FAKETIME_NO_CACHE="1", LD_PRELOAD=FAKETIME,
                       DONT_FAKE_MONOTONIC="1", TZ="UTC")
        self.assertEqual(job.runs(), [])
        stamp.write_text("@2030-08-04 23:30:00\n")
        try:
            time.clock_settime(time.CLOCK_REALTIME, time.time())
        except PermissionError as error:
            self.skipTest(f"setting the clock: {error}")
        job.wait_for_run(timeout=5)
        self.assertIn("2030-08-05 22:00:00", self.printed(job)["next start"])


if __name__ == "__main__":
    unittest.main(verbosity=2)
