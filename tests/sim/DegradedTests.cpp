// Nights without the permission: a card instead of a lock.
#include <gtest/gtest.h>

#include "tests/sim/NightFixture.h"

namespace dormel {
namespace {

class DegradedTest : public testing::Test {
 protected:
  DegradedTest() { machine.accessibility.setTrusted(false); }

  NightFixture night;
  SimMachine& machine = night.machine;
};

TEST_F(DegradedTest, TheCardSitsTenPointsFromTheCornerOfTheUsableArea) {
  const struct {
    Rect screen;  // with a bar of 24 at its top
    double dock;  // at its left
    Size fitting;
    Rect card;
  } rows[] = {
      {{0, 0, 1920, 1080}, 0, {0, 0}, {1470, 826, 440, 220}},
      {{0, 0, 1920, 1080}, 0, {440, 220}, {1470, 826, 440, 220}},
      {{0, 0, 1920, 1080}, 0, {441, 100}, {1469, 826, 441, 220}},
      {{0, 0, 1920, 1080}, 0, {300, 221.5}, {1470, 824.5, 440, 221.5}},
      {{0, 0, 1000, 700}, 600, {520, 400}, {470, 266, 520, 400}},
  };
  for (const auto& row : rows) {
    NightFixture own;
    own.machine.accessibility.setTrusted(false);
    own.machine.screens.setDock(row.dock);
    own.machine.screens.resize("DP-1", row.screen);
    own.machine.windows.setFittingSize([&](const View&) { return row.fitting; });
    own.begin("2026-11-16 22:00:00");
    ASSERT_EQ(own.machine.windows.visible().size(), 1U);
    const SimWindow& card = *own.machine.windows.visible().front();
    EXPECT_EQ(card.frame(), row.card) << card.frame().x << "," << card.frame().y;
    const WindowStyle& style = card.style();
    EXPECT_EQ(style.level, WindowLevel::floating);
    EXPECT_EQ(style.collectionBehavior, 337U);
    EXPECT_EQ(style.background, WindowBackground::clear);
    EXPECT_FALSE(style.isOpaque || style.hasShadow || style.hidesOnDeactivate || style.ignoresMouseEvents);
  }
}

TEST_F(DegradedTest, APermissionThatComesTooLateLocksNothing) {
  night.begin("2026-11-16 22:00:08");
  machine.advanceTo("2026-11-17 06:00:01");
  machine.accessibility.setTrusted(true);
  machine.journal.clear();
  machine.advance(3);
  EXPECT_EQ(machine.journal.text(),
            "06:00:02.000 out: [a11y] Accessibility granted, but the blocking hours have ended. Exiting.\n"
            "06:00:02.000 window 1 out\n"
            "06:00:02.000 exit 0\n");
}

}  // namespace
}  // namespace dormel
