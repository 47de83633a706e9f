"""The extension in the real GNOME Shell, told what to do by a stand-in for the program."""

import contextlib
import os
import shutil
import subprocess
import sys
import time
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools"))

from desk.gnome import GnomeDesk, extension  # noqa: E402
from desk.gnome.extension import UUID, Program  # noqa: E402
from desk.keyboard import EVDEV  # noqa: E402
from desk.wait import until  # noqa: E402

# What the session manager says to the shell.
END = ("imports.gi.Gio.DBus.session.call('org.gnome.Shell', '/org/gnome/SessionManager/EndSessionDialog', "
       "'org.gnome.SessionManager.EndSessionDialog', %s, null, 0, -1, null, null)")
# What polkit's service and its helper say to the shell's agent.
PROMPT = "const agent = Main.componentManager._allComponents.polkitAgent; "
ALT, CTRL, SUPER, F9 = EVDEV["L.Option"], EVDEV["L.Ctrl"], EVDEV["L.Cmd"], 67
A11Y = "org.gnome.desktop.a11y.keyboard"


class ShellTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desk = cls.enterClassContext(GnomeDesk(prepare=extension.install))
        cls.shell = cls.desk.server

    def setUp(self):
        self.program = Program(self.desk)
        self.program.hello()
        self.addCleanup(self.let_go)

    def let_go(self):
        """Nothing is held any more, whatever a test left behind; the shell lives."""
        self.assertTrue(self.shell.alive())
        if self.shell.lock_screen_is_up():
            self.shell.unlock_screen()
        self.program.vanish()
        last = Program(self.desk)
        last.say("release")
        last.hello()
        last.vanish()
        until("the document is there", lambda: not self.desk.eyes.dark(), 3)
        until("the keys are back", self.desk.keys_reach_the_document, 5)
        self.assertIsNone(extension.kept(self.desk))

    def assert_locked(self, program=None, within=1):
        """Black, and a key comes to the program and to nobody else."""
        program = program or self.program
        until("every monitor is black", self.desk.eyes.dark, within)
        mark = self.desk.witness.mark()
        until("the keys are the program's", lambda: (program.last("held") or {"keys": True})["keys"], within)
        before = len(program.keys)
        self.desk.keyboard.tap(F9)
        until("a key comes", lambda: program.keys[before:] == [(F9, True), (F9, False)], within)
        self.assertEqual(self.desk.witness.heard(mark), [])

    def test_cover_keys_and_what_rests(self):
        for schema, key, value in (("org.gnome.mutter", "overlay-key", "'Super_R'"), (A11Y, "slowkeys-enable", "true")):
            self.shell.set(schema, key, value)
            self.addCleanup(self.shell.reset, schema, key)
        self.program.lock()
        self.assert_locked()
        self.assertEqual(self.shell.get("org.gnome.mutter", "overlay-key"), "''")
        self.assertEqual(self.shell.get(A11Y, "slowkeys-enable"), "false")
        # Every key by its place, and how long it is down: repeats are none of the program's business.
        before = len(self.program.keys)
        self.desk.keyboard.press(*EVDEV.values())
        time.sleep(1)
        self.desk.keyboard.let_go()
        wanted = [(key, True) for key in EVDEV.values()] + [(key, False) for key in reversed(EVDEV.values())]
        until("all keys come once", lambda: self.program.keys[before:] == wanted, 2)
        self.program.say("release")
        until("the settings are the user's", lambda: self.shell.get(A11Y, "slowkeys-enable") == "true", 3)
        self.assertEqual(self.shell.get("org.gnome.mutter", "overlay-key"), "'Super_R'")

    def test_shortcuts_do_nothing(self):
        self.program.lock()
        # Super alone comes late: the compositor hears a moment after the lock that it opens nothing any more.
        for keys in ((ALT, 60), (ALT, 15), (SUPER, 15), (SUPER, EVDEV["A"]), (SUPER, EVDEV["L"]),
                     (SUPER, EVDEV["V"]), (SUPER, 1), (99,), (ALT, 99), (CTRL, ALT, 111), (CTRL, ALT, 61),
                     (CTRL, ALT, EVDEV["T"]), (SUPER, 104), (ALT, 62), (CTRL, 42, ALT, EVDEV["R"]), (SUPER,)):
            with self.subTest(keys=keys):
                before = len(self.program.keys)
                self.desk.keyboard.chord(*keys)
                wanted = [(key, True) for key in keys] + [(key, False) for key in reversed(keys)]
                until("its keys come", lambda: self.program.keys[before:] == wanted, 1)
        self.assert_locked()
        self.assertEqual(self.shell.run("Main.overview.visible || Main.modalCount !== 1"), "false")

    def test_what_takes_the_keys_gives_them_back(self):
        self.program.lock()
        rivals = {
            "run dialog": "Main.openRunDialog()",
            "overview": "Main.overview.show()",
            "looking glass": "Main.createLookingGlass().open()",
            "screenshot": "Main.screenshotUI.open().catch(logError)",
            "menu": "Main.panel.toggleQuickSettings()",
            "date menu": "Main.panel.toggleCalendar()",
            "notice": "Main.notify('Somebody', 'says something')",
            "volume": "Main.osdWindowManager.show(-1, null, 'Louder', 0.5)",
            "the end of the session": END % "'Open', new imports.gi.GLib.Variant('(uuuao)', [0, 0, 60, []])",
            "polkit's prompt": PROMPT + "agent._onInitiate(null, 'org.example.do', 'Something wants to', '', 'x', ['root']); "
                               "agent._currentDialog._onSessionRequest(null, 'Password: ', false)",
            "magnifier": "new imports.gi.Gio.Settings({schema_id: 'org.gnome.desktop.a11y.applications'})"
                         ".set_boolean('screen-magnifier-enabled', true)",
            "a second extension's actor": "global.stage.add_child(new imports.gi.St.Widget({width: 900, height: 900, "
                                          "style: 'background-color: #fff'}))",
        }
        for name, script in rivals.items():
            with self.subTest(rival=name):
                self.shell.run(script + "; 0")
                self.assert_locked(within=3)
        until("the end of the session is asked for", lambda: self.shell.run("Main.endSessionDialog.state") == "0", 5)
        self.assertEqual(self.shell.run(PROMPT + "agent._currentDialog.state"), "0")
        self.assert_locked(within=3)
        self.shell.run(PROMPT + "agent._currentDialog.close(); agent._currentDialog = null; 0")
        self.shell.run(END % "'Close', null" + "; Main.runDialog.close(); Main.overview.hide(); Main.lookingGlass.close();"
                       "Main.screenshotUI.close(true); Main.panel.closeQuickSettings(); Main.panel.closeCalendar(); "
                       "Main.magnifier.setActive(false); global.stage.get_child_at_index(global.stage.get_n_children() "
                       "- 2).destroy(); new imports.gi.Gio.Settings({schema_id: "
                       "'org.gnome.desktop.a11y.applications'}).reset('screen-magnifier-enabled'); 0")
        self.assert_locked(within=3)

    def test_a_shadow_takes_no_clicks(self):
        self.program.hold(cover=False, keys=False, absence=0)
        self.program.say("panel", id=1, at=[100, 100, 200, 100], black=False, level=1, alpha=1, fade=0, curve=0,
                         pointer=True, reach=[24, 24, 152, 52])

        def is_ours(x, y):
            return self.shell.run("global.stage.get_last_child().contains(global.stage.get_actor_at_pos("
                                  f"imports.gi.Clutter.PickMode.REACTIVE, {x}, {y}))") == "true"

        until("the panel can be touched", lambda: is_ours(200, 150), 3)
        self.assertEqual([is_ours(*at) for at in ((125, 125), (275, 175), (122, 150), (200, 178))],
                         [True, True, False, False])

    def test_keys_before_the_cover(self):
        """While the screens darken, and in the demo, which draws its own black."""
        self.program.hold(cover=False, absence=0)
        self.program.wait_for("held", lambda held: held["keys"])
        self.assertFalse(self.desk.keys_reach_the_document(F9))
        until("the program heard it", lambda: self.program.keys == [(F9, True), (F9, False)], 2)

    def test_new_monitor(self):
        self.program.lock()
        for _ in range(3):
            name = self.shell.plug(1024, 768)
            self.assertTrue(self.desk.eyes.dark())  # the first picture that there is of it
            self.program.wait_for("monitors", lambda monitors: len(monitors) == 3)
            self.shell.pull(name)
            until("it is gone", lambda: len(self.shell.monitors()) == 2, 5)
        self.assert_locked()

    def test_program_dies_and_comes_back(self):
        self.program.lock()
        self.program.panel(1, [0, 0, 1920, 1080])
        self.program.pool(1, bytes([255]) * (100 * 100 * 4))
        self.assertTrue(self.program.frame(1, 1, (100, 100), [300, 300, 100, 100], [1]))
        monitor = self.shell.monitors()[0]

        def white():
            return self.desk.eyes.picture(monitor).brighter_than(250, 300, 300, 100, 100)

        until("its picture is shown", lambda: white() == 10000, 2)
        self.program.vanish()
        self.assertTrue(self.desk.eyes.dark())
        self.assertFalse(self.desk.keys_reach_the_document())
        until("words instead of the picture", lambda: 100 < self.desk.eyes.picture(monitor).brighter_than(
            100, 600, 400, 720, 280) and white() == 0, 4)
        self.program = Program(self.desk)
        self.assertEqual(self.program.hello()["held"], {"cover": True, "keys": True, "lockScreen": False})
        self.program.lock()
        until("the words are gone", lambda: self.desk.eyes.picture(monitor).brightest() == 0, 2)
        self.assert_locked()

    def test_only_the_program_may_talk(self):
        self.program.lock()
        stranger = os.path.join(self.desk.folder, "stranger")
        shutil.copy("/usr/bin/perl", stranger)
        said = subprocess.run([stranger, "-MSocket", "-e", """
            $SIG{PIPE} = 'IGNORE';  # refused before it has said a word
            socket(my $s, AF_UNIX, SOCK_STREAM, 0); connect($s, sockaddr_un($ARGV[0])) or die;
            my $hello = '{"release":{}}'; syswrite($s, pack('V', length $hello) . $hello);
            print sysread($s, my $answer, 1) ? 'answered' : 'refused'""", extension.socket_path(self.desk)],
            capture_output=True, text=True, timeout=20, check=True).stdout
        self.assertEqual(said, "refused")
        self.assertEqual(os.stat(extension.socket_path(self.desk)).st_mode & 0o777, 0o600)
        other = Program(self.desk)  # ours, but another run of it is holding
        other.hold()
        other.wait_for("refused")
        other.say("release")
        other.hello()
        other.vanish()
        self.assert_locked()

    def test_lets_go_by_itself(self):
        for what, options, stays in (("the end hour, program there", {"until": 2}, True),
                                     ("the end hour, program gone", {"until": 2}, False),
                                     ("gone for too long", {"absence": 2}, False),
                                     ("a rehearsal that died", {"absence": 0}, False)):
            with self.subTest(what):
                self.program.lock(**options)
                self.assertTrue(self.desk.eyes.dark())
                if not stays:
                    self.program.vanish()
                until("it lets go", self.desk.keys_reach_the_document, 8)
                self.assertFalse(self.desk.eyes.dark())
                self.assertIsNone(extension.kept(self.desk))
                self.program.vanish() if stays else None
                self.program = Program(self.desk)

    def test_lock_screen_comes_first(self):
        """While it is up, before the hold and after it, it can be seen and typed at."""
        for locked_first in (True, False):
            with self.subTest(locked_first=locked_first):
                if locked_first:
                    self.shell.lock_screen()
                    self.program.hold()
                else:
                    self.program.lock()
                    self.shell.lock_screen()
                until("the cover stands aside", lambda: self.program.last("held") == {
                    "cover": False, "keys": False, "lockScreen": True}, 3)
                heard = len(self.program.keys)
                self.desk.keyboard.tap(*[EVDEV["A"]] * 3)  # the first one lights it up
                until("it asks for the password", lambda: self.desk.eyes.picture(
                    self.shell.monitors()[0]).brightest() > 100, 5, 0.2)
                self.assertEqual(self.program.keys[heard:], [])
                self.shell.unlock_screen()
                until("the cover is back", lambda: self.program.last("held") == {
                    "cover": True, "keys": True, "lockScreen": False}, 3)
                self.assert_locked(within=2)
                self.program.say("release")
                until("nothing is held", lambda: not self.program.last("held")["keys"], 3)

    def test_pictures_do_not_pile_up(self):
        self.program.lock()
        self.program.panel(1, [0, 0, 1920, 1080])
        self.program.pool(1, bytes(660 * 660 * 4))
        before = self.shell.memory()
        for serial in range(1, 161):  # 279 MB of them
            self.assertTrue(self.program.frame(serial, 1, (660, 660), [300, 200, 660, 660], [1]))
        self.assertLess(self.shell.memory() - before, 150)

    def test_lies(self):
        """A frame that is not there is refused and the connection goes on; a lie of the program itself ends it. The
        shell lives and stays covered through all of it."""
        self.program.lock()
        self.program.panel(1, [0, 0, 1920, 1080])
        size = 100 * 100 * 4
        show = ((100, 100), [300, 300, 100, 100], [1])
        for what, data, spoil in (("too small", size - 1, None), ("none at all", 0, None),
                                  ("shrunk behind our back", size, 4096)):
            with self.subTest(what):
                memory = self.program.pool(1, bytes(data), sealed=False)
                if spoil is not None:
                    self.assertTrue(self.program.frame(10, 1, *show))
                    os.ftruncate(memory, spoil)
                self.assertFalse(self.program.frame(11 + data + (spoil or 0), 1, *show))
                os.close(memory)
        self.assertFalse(self.program.frame(7, 99, *show))
        reader, writer = os.pipe()
        lies = {
            "a pipe for a pool": lambda: self.program.say("pool", descriptor=reader, id=2),
            "a file for a pool": lambda: self.program.say("pool", descriptor=sys.stdin.fileno(), id=2),
            "a pool without a descriptor": lambda: self.program.say("pool", id=2),
            "no JSON": lambda: self.program.say_text(b"{\"hold\""),
            "a number that is none": lambda: self.program.panel(2, [0, 0, 1e300, 1]),
            "too long": lambda: self.program.say_text(b" " * 70000),
        }
        for what, lie in lies.items():
            with self.subTest(what):
                with contextlib.suppress(OSError):
                    lie()
                until("it is shut out", lambda: self.program.ended, 3)
                self.assertTrue(self.desk.eyes.dark())
                self.program = Program(self.desk).lock()
        os.close(reader)
        os.close(writer)
        self.assert_locked()

    def test_disabled_and_enabled(self):
        self.program.lock()
        self.shell.shell("Extensions.DisableExtension", UUID)
        until("nothing is covered", lambda: not self.desk.eyes.dark(), 3)
        self.assertEqual(self.shell.get("org.gnome.mutter", "overlay-key"), "'Super'")
        self.shell.shell("Extensions.EnableExtension", UUID)
        until("it covers without being told", self.desk.eyes.dark, 3)
        self.assertFalse(self.desk.keys_reach_the_document())
        self.program = Program(self.desk)
        self.program.lock()
        self.assert_locked()

    def test_next_login(self):
        """After a crash of the shell the next login is covered before any program is there."""
        self.program.lock()
        self.shell.kill()
        self.program.vanish()
        self.desk.log_in_again()
        self.assertTrue(self.desk.eyes.dark())
        self.program = Program(self.desk)
        self.assertTrue(self.program.hello()["held"]["keys"])
        self.program.say("release")
        self.program.wait_for("held", lambda held: not held["cover"])
        self.assertEqual(self.shell.get("org.gnome.mutter", "overlay-key"), "'Super'")
        self.desk.sit_at_the_document()


if __name__ == "__main__":
    unittest.main()
