"""Pictures in the middle of the lock's motion, not only of its ends: the real program fades in over a desktop, and at
every moment of that the whole screen is equally dark."""

import os
import statistics
import unittest

from case import DesktopCase, until

STEP = 6  # every so many pixels, in both directions
ALIKE = 0.08  # a picture may be taken between two parts of one frame
MOMENTS = ((0.05, 0.35), (0.35, 0.65), (0.65, 0.97))


class MotionTest(DesktopCase):
    def shares(self, monitor, before, now):
        """How much of the desktop is gone in the middle of the monitor, where the keys will be, and outside of it. The
        median: what is drawn there by then is little."""
        middle, around = [], []
        for y in range(0, monitor.height, STEP):
            for x in range(0, monitor.width, STEP):
                brightness = max(before.pixel(x, y))
                if brightness < 60:
                    continue
                channel = before.pixel(x, y).index(brightness)
                is_middle = (abs(x - monitor.width // 2) < 200 and abs(y - monitor.height // 2) < 200)
                (middle if is_middle else around).append(1 - now.pixel(x, y)[channel] / brightness)
        return statistics.median(middle), statistics.median(around)

    def play(self, **options):
        desk = self.desk(pretty=True, **options)
        monitor = min(desk.eyes.monitors(), key=lambda m: m.width)
        before = desk.eyes.picture(monitor)
        desk.home.hours_around_now(onboardingComplete=True)
        process = self.start(desk, "--scheduled")
        until("the program covers the screens", lambda: desk.eyes.covered(process.pid), 10, every=0.005)
        pictures, began = [], self.clock()
        while self.clock() - began < 8 and not (len(pictures) > 3 and desk.eyes.dark()):
            pictures.append(desk.eyes.picture(monitor))
        seen = [(now, *self.shares(monitor, before, now)) for now in pictures]
        folder = os.environ.get("DORMEL_MOTION_PICTURES")
        for low, high in MOMENTS:
            between = [moment for moment in seen if low < moment[2] < high]
            self.assertTrue(between, f"a picture between {low} and {high} of the fade: {[s[1:] for s in seen]}")
            for number, (now, middle, around) in enumerate(between):
                if folder and number == 0:
                    now.save(os.path.join(folder, f"fade-{'with' if options else 'without'}-{int(100 * low):02}.png"))
                self.assertLess(abs(middle - around), ALIKE, f"{middle:.2f} gone in the middle, {around:.2f} around it")
        self.saw(f"{len(seen)} pictures, " + " ".join(f"{middle:.2f}/{around:.2f}" for _, middle, around in seen))

    def test_without_a_compositor(self):
        self.play()

    def test_with_a_compositor(self):
        self.play(compositor=True)


if __name__ == "__main__":
    unittest.main()
