// Nights without the permission: a card instead of a lock, and the lock the moment the permission comes.
#include <gtest/gtest.h>

#include "core/DebugLog.h"
#include "tests/sim/Night.h"

namespace dormel {
namespace {

using Lines = std::vector<std::string>;

constexpr const char* GRANTED = "[a11y] Accessibility granted — starting the block now.";

std::string toggled(const char* to) {
  return std::string("[a11y] Accessibility changed → ") + to + "; rebuilding lockdown.";
}

/// The timers of a night that was locked from its beginning.
int timersOfALock() {
  Night night;
  night.begin("2026-11-16 23:00:00");
  night.machine.advance(5);
  return night.machine.timeline.repeatingTimers();
}

class DegradedTest : public testing::Test {
 protected:
  DegradedTest() { machine.accessibility.setTrusted(false); }

  Night night;
  SimMachine& machine = night.machine;
};

TEST_F(DegradedTest, TheCardSitsTenPointsFromTheCornerOfTheUsableArea) {
  const struct {
    Rect screen;  // with a bar of 24 at its top
    Size fitting;
    Rect card;
  } rows[] = {
      {{0, 0, 1920, 1080}, {0, 0}, {1470, 826, 440, 220}},
      {{0, 0, 1920, 1080}, {440, 220}, {1470, 826, 440, 220}},
      {{0, 0, 1920, 1080}, {441, 100}, {1469, 826, 441, 220}},
      {{0, 0, 1920, 1080}, {300, 221.5}, {1470, 824.5, 440, 221.5}},
      {{-100, 50, 1000, 700}, {520, 400}, {370, 316, 520, 400}},
  };
  for (const auto& row : rows) {
    Night own;
    own.machine.accessibility.setTrusted(false);
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

TEST_F(DegradedTest, ANightFromTheCardToTheMorning) {
  night.begin("2026-11-16 22:00:00");
  EXPECT_TRUE(night.session().isDegraded());
  EXPECT_EQ(machine.timeline.repeatingTimers(), 3) << "the permission, the hours, the watchdog";
  machine.screens.plug("DP-3", {3200, 0, 800, 600});
  machine.screens.pull("DP-3");
  machine.sleep(60);  // nobody watches screens or sleep
  machine.advanceTo("2026-11-16 23:15:01");
  EXPECT_EQ(night.session().state(), SessionState::idle);
  EXPECT_FALSE(machine.keyboard.isTaken());
  EXPECT_EQ(machine.windows.keyWindow(), nullptr);
  EXPECT_EQ(machine.journal.text(),
            "22:00:00.000 start --scheduled\n"
            "22:00:00.000 out: [a11y] Accessibility is OFF — NOT locking the screen (P2.2r). Showing the permission "
            "card and watching.\n"
            "22:00:00.000 window 1 made, floating, 0,0 520x400\n"
            "22:00:00.000 window 1 frame 1470,826 440x220\n"
            "22:00:00.000 window 1 in\n"
            "22:00:00.000 screen DP-3 plugged\n"
            "22:00:00.000 screen DP-3 pulled\n"
            "22:00:00.000 sleeps\n"
            "22:01:00.000 wakes\n");

  machine.journal.clear();
  machine.accessibility.setTrusted(true);
  machine.advance(2.999);
  const std::string records = "~/Library/Application Support/" + std::string(BUNDLE_IDENTIFIER);
  Lines expected{std::string("out: ") + GRANTED,
                 "window 1 out",
                 "application activated",
                 "window 2 made, above everything, 0,0 1920x1080",
                 "window 3 made, above everything, 1920,0 1280x1024",
                 "window 2 alpha 0",
                 "window 2 in",
                 "window 3 alpha 0",
                 "window 3 in",
                 "presentation 378",
                 "keyboard taken",
                 "mkdir ~/Library",
                 "mkdir ~/Library/Application Support",
                 "mkdir " + records,
                 "write " + records + "/.nights.json.tmp",
                 "rename " + records + "/nights.json",
                 "window 2 fades to 1 in 2.5 s ease-out",
                 "window 3 fades to 1 in 2.5 s ease-out"};
  for (std::string& line : expected) line.insert(0, "23:15:03.000 ");
  EXPECT_EQ(machine.journal.lines(), expected);
  EXPECT_EQ(night.session().permissionWindow(), nullptr);
  EXPECT_EQ(machine.timeline.repeatingTimers(), timersOfALock());
  EXPECT_NEAR(night.unlock(), 30, 0.11);
  machine.advanceTo("2026-11-17 06:00:10");
  EXPECT_EQ(machine.exitStatus(), 0);
}

TEST_F(DegradedTest, EndsWithTheHours) {
  night.begin("2026-11-16 22:00:08");
  machine.advanceTo("2026-11-17 05:59:59");
  machine.journal.clear();
  machine.advance(20);
  EXPECT_EQ(machine.journal.text(),
            "06:00:08.000 window 1 out\n"
            "06:00:08.000 presentation 0\n"
            "06:00:08.000 out: Blocking hours ended. Exiting cleanly.\n"
            "06:00:08.000 exit 0\n");
  EXPECT_EQ(machine.exitStatus(), 0);
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

TEST_F(DegradedTest, APermissionThatFlickersLeavesOneOfEverything) {
  const struct {
    const char* name;
    std::vector<Seconds> flips;  // moments at which it changes; polled at 3, 6, 9 ...
    bool locked;
    Lines lines;
  } rows[] = {
      {"between two looks", {1, 2, 4, 5, 7, 8}, false, {}},
      {"granted for one look", {2, 4}, true, {GRANTED, toggled("false")}},
      {"granted in the end", {1, 2, 4, 5, 8}, true, {GRANTED}},
      {"back and forth",
       {2, 5, 8, 11, 14},
       true,
       {GRANTED, toggled("false"), toggled("true"), toggled("false"), toggled("true")}},
  };
  for (const auto& row : rows) {
    Night own;
    own.machine.accessibility.setTrusted(false);
    own.begin("2026-11-16 23:00:00");
    bool trusted = false;
    for (const Seconds at : row.flips) {
      own.machine.after(at, [&] { own.machine.accessibility.setTrusted(trusted = !trusted); });
    }
    own.machine.advance(60);
    const auto& lines = own.machine.output.lines();
    EXPECT_EQ(Lines(lines.begin() + 1, lines.end()), row.lines) << row.name;
    EXPECT_EQ(own.session().isDegraded(), !row.locked) << row.name;
    EXPECT_EQ(own.machine.windows.cover(), row.locked ? 1 : 0) << row.name;
    EXPECT_EQ(own.machine.windows.visible().size(), row.locked ? 2U : 1U) << row.name;
    EXPECT_EQ(own.machine.timeline.repeatingTimers(), row.locked ? timersOfALock() : 3) << row.name;
  }
}

}  // namespace
}  // namespace dormel
