"""The first run on the real program, from the greeting to an armed scheduler: once by mouse, once by keyboard alone."""

import unittest

from case import RETURN, SPACE, DesktopCase, until
from desk.first_run import ByKeyboard, ByMouse, FirstRun, noon
from desk.keyboard import DOWN, LEFT_CTRL, RIGHT, UP

Q = 16
SCROLL_DOWN = 5


class FirstRunTest(DesktopCase):
    def open(self, kind_of_hand):
        desk = self.desk(manager=True, windows="openbox", extra={"TZ": noon()})
        desk.home.change_settings(debugLoggingEnabled=True)
        reader = self.reader(desk)
        run = FirstRun(desk, desk.bundle, reader, kind_of_hand(desk, reader), lambda *_: None)
        run.open()
        self.started(run.process)
        self.in_front(desk, run.process, "Dormel")
        return desk, reader, run

    def quit(self, desk, run):
        desk.keyboard.chord(LEFT_CTRL, Q)
        self.assertEqual(run.process.wait(10), 0)

    def test_by_mouse(self):
        desk, _, run = self.open(ByMouse)
        run.greet()

        # The wheel turns wherever the pointer is.
        run.see("1 AM")
        desk.mouse.move(run.window().x + 40, run.window().y + 300)
        desk.mouse.press(SCROLL_DOWN)
        desk.mouse.release(SCROLL_DOWN)
        until("the wheel turns", lambda: "selected" in run.see("2 AM").states, 3)
        run.answer()
        run.look_in_the_mirror()
        took = run.watch()
        self.saw(f"the scene took {took:.1f} s")
        self.assertLess(abs(took - 17.3), 2)
        run.try_it()
        run.read_the_facts()
        self.saw(f"armed: {run.finish('1 AM', '1 AM', 1)}")
        settings = desk.home.settings()
        self.assertEqual([settings[key] for key in ("blockStartHour", "blockEndHour", "onboardingV2Keeps")],
                         [1, 6, ["scrolling"]])
        self.quit(desk, run)

    def test_by_keyboard(self):
        desk, reader, run = self.open(ByKeyboard)
        keyboard, hand = desk.keyboard, run.hand
        run.greet()
        run.answer(nights="Most nights", keeps="Everything")

        # Back to the chips and the wheel: the arrow keys move among chips, and the focus goes with the wheel.
        for before in ("Pick all that apply.", "When do you want to be asleep?"):
            run.see("Back")
            hand.press("Back")
            run.see(before)
        hand.go_to("11 PM")
        keyboard.tap(DOWN)
        until("the focus goes with the wheel", lambda: reader.focused().name == "Midnight", 2)
        keyboard.tap(UP, UP, UP)
        until("the wheel stops at its end", lambda: reader.focused().name == "10 PM", 2)
        run.see("Continue")
        keyboard.tap(DOWN, RETURN)
        hand.go_to("Scrolling")
        keyboard.tap(RIGHT, SPACE)
        until("the next chip is picked", lambda: "checked" in run.see("Chatting").states, 2)
        hand.press("Continue")
        run.see("You're up until about 2 AM, most nights. Mostly chatting.")
        run.look_in_the_mirror("21")
        run.watch()
        run.try_it()
        for source in ("STANFORD", "SLEEP", "PSYCHOLOGICAL MEDICINE", "UK BIOBANK"):
            hand.go_to(source)
        run.read_the_facts()

        # Interrupted here, it goes on from here.
        run.see("When should your computer lock?")
        self.quit(desk, run)
        run.open()
        self.in_front(desk, run.process, "Dormel")
        self.saw(f"armed: {run.finish('10 PM', '10 PM', 22)}")
        self.quit(desk, run)


if __name__ == "__main__":
    unittest.main()
