// What the Wayland family decides, without a compositor.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/common/lock/AbandonedLockPolicy.h"
#include "platform/common/lock/FocusRetrier.h"
#include "platform/common/lock/LockStages.h"
#include "platform/linux/DisplayChoice.h"
#include "platform/linux/display/KeyTracker.h"
#include "platform/linux/display/XkbLabels.h"
#include "platform/linux/wayland/Outputs.h"
#include "platform/sim/SimMachine.h"

namespace dormel::wayland::test {
namespace {

TEST(DisplayChoice, TheBestThatIsThere) {
  struct Case {
    const char* desktop;
    DisplayOffer offer;  // overlay, inhibitor, session lock, taken over, X11, extension
    DisplayKind kind;
  };
  const std::vector<Case> cases{
      {"sway 1.8 with its X bridge", {true, true, true, true, true}, DisplayKind::sessionLock},
      {"labwc, whose shortcuts act over an overlay", {true, false, true, true, true}, DisplayKind::sessionLock},
      {"KWin", {true, true, false, true, true}, DisplayKind::overlay},
      {"Hyprland, which lets nobody take a lock over", {true, true, true, false, true}, DisplayKind::overlay},
      {"an overlay without an inhibitor", {true, false, false, true, false}, DisplayKind::none},
      {"the same with an X bridge", {true, false, false, true, true}, DisplayKind::x11},
      {"a lock that nothing can fade into", {false, false, true, true, false}, DisplayKind::none},
      {"an X server", {false, false, false, true, true}, DisplayKind::x11},
      {"GNOME Shell with our extension", {false, false, false, false, true, true}, DisplayKind::extension},
      {"nothing", {}, DisplayKind::none},
  };
  for (const Case& c : cases) EXPECT_EQ(chooseDisplay(c.offer), c.kind) << c.desktop;
}

TEST(LockStages, TheLockIsUpOnlyWhileTheScreensAreBlack) {
  using Step = LockStages::Step;
  LockStages stages;
  stages.setCovered(true);
  EXPECT_EQ(stages.next(), Step::nothing) << "a rehearsal locks no session";
  stages.setCovered(false);
  stages.setLockdown(true);
  EXPECT_EQ(stages.next(), Step::nothing) << "the fade in can be seen";
  stages.setCovered(true);
  EXPECT_EQ(stages.next(), Step::lock);
  EXPECT_EQ(stages.next(), Step::nothing) << "asked for once";
  stages.setLowering(true);
  EXPECT_EQ(stages.next(), Step::nothing) << "what was not answered cannot be given back";
  stages.locked();
  EXPECT_EQ(stages.next(), Step::unlock);
  stages.setLockdown(false);
  stages.setLowering(false);
  EXPECT_EQ(stages.next(), Step::nothing);
}

TEST(LockStages, NewPanelsThatAreNotBlackYetOpenNothing) {
  LockStages stages;
  stages.setLockdown(true);
  stages.setCovered(true);
  static_cast<void>(stages.next());
  stages.locked();
  stages.setCovered(false);
  EXPECT_EQ(stages.next(), LockStages::Step::nothing);
}

TEST(LockStages, AnAbandonedLockIsTakenOverBeforeAnythingCanBeSeen) {
  LockStages stages;
  stages.setAbandoned();
  EXPECT_EQ(stages.next(), LockStages::Step::nothing) << "there is nothing to lock yet";
  stages.setLockdown(true);
  EXPECT_EQ(stages.next(), LockStages::Step::lock);
}

TEST(LockStages, AnotherProgramsLockIsWaitedFor) {
  LockStages stages;
  stages.setLockdown(true);
  stages.setCovered(true);
  static_cast<void>(stages.next());
  stages.finished();
  EXPECT_EQ(stages.stage(), LockStages::Stage::refused);
  EXPECT_EQ(stages.next(), LockStages::Step::nothing);
  stages.retry();
  EXPECT_EQ(stages.next(), LockStages::Step::lock);
}

struct Struggle {
  SimMachine machine;
  bool isHeld = true;
  std::string asked;  // a: again, n: a new surface
  FocusRetrier focus{machine.clock, {[this] { return isHeld; }, [this] { asked += 'a'; }, [this] { asked += 'n'; }}};
};

TEST(FocusRetrier, AsksAtOnceAndThenByTurns) {
  Struggle s;
  s.focus.want(true);
  s.isHeld = false;
  s.focus.look();
  EXPECT_EQ(s.asked, "") << "not inside the event that told of it";
  s.machine.advance(0.01);
  EXPECT_EQ(s.asked, "a");
  s.machine.advance(0.2);
  EXPECT_EQ(s.asked, "ana");
  s.isHeld = true;
  s.focus.look();
  s.machine.advance(5);
  EXPECT_EQ(s.asked, "ana");
}

TEST(FocusRetrier, UnderALockOnlyANewSurfaceHelps) {
  Struggle s;
  s.focus.setUnderLock(true);
  s.isHeld = false;
  s.focus.want(true);
  s.machine.advance(0.15);
  EXPECT_EQ(s.asked, "nn");
}

TEST(FocusRetrier, DoesNotFightAtFullSpeedForEver) {
  Struggle s;
  s.focus.want(true);
  for (int i = 0; i < 1000; ++i) {  // somebody takes it back each time it was had
    s.isHeld = false;
    s.focus.look();
    s.machine.advance(0.001);
    s.isHeld = true;
    s.focus.look();
  }
  EXPECT_LE(s.asked.size(), 20U);
  EXPECT_GE(s.asked.size(), 10U);
}

TEST(FocusRetrier, LeavesTheKeyboardToAnotherProgramsLock) {
  Struggle s;
  s.focus.want(true);
  s.focus.setYielding(true);
  s.isHeld = false;
  s.focus.look();
  s.machine.advance(3);
  EXPECT_EQ(s.asked, "");
  s.focus.setYielding(false);
  s.machine.advance(0.01);
  EXPECT_EQ(s.asked, "a");
}

TEST(OutputLayout, OutputsAreScreensFromTheBottomLeftOfTheMainOne) {
  const OutputLayout layout{{{"right", {1920, -200, 1280, 1024}},
                             {"main", {0, 0, 1920, 1080}},
                             {"mirror", {0, 0, 1920, 1080}},
                             {"off", {0, 0, 0, 0}},
                             {"mad", {1 << 30, 0, 1 << 30, 1}}}};
  const auto screens = layout.screens();
  ASSERT_EQ(screens.size(), 2U);
  EXPECT_EQ(screens[0].name, "main");
  EXPECT_EQ(screens[0].frame, (Rect{0, 0, 1920, 1080}));
  EXPECT_EQ(screens[1].frame, (Rect{1920, 256, 1280, 1024}));
  EXPECT_EQ(*screens[1].displayBounds, (Rect{1920, -200, 1280, 1024}));
}

TEST(OutputLayout, OutputsThatLieOverEachOtherAreToldApart) {
  // What some compositors do with an output that comes back without a place. Points go upwards from the main one's
  // bottom.
  for (const auto& order : {OutputLayout{{{"wide", {0, 0, 1920, 1080}}, {"small", {0, 0, 1280, 1024}}}},
                            OutputLayout{{{"small", {0, 0, 1280, 1024}}, {"wide", {0, 0, 1920, 1080}}}}}) {
    const auto screens = order.screens();
    ASSERT_EQ(screens.size(), 2U);
    for (const Screen& screen : screens) EXPECT_EQ(screenShowing(screens, screen.frame)->name, screen.name);
    EXPECT_EQ(screenShowing(screens, {5000, 0, 10, 10}), nullptr);
  }
}

TEST(KeyTracker, AKeyboardThatIsHeardOfAgainLetsGoOfWhatWasMissed) {
  constexpr std::uint32_t A = 38;
  constexpr std::uint32_t S = 39;
  constexpr std::uint32_t D = 40;
  KeyTracker keys;
  static_cast<void>(keys.press(1, A, 0));
  static_cast<void>(keys.press(1, S, 1));
  const auto events = keys.reconcile(1, {{S, 1}, {D, 2}});
  ASSERT_EQ(events.size(), 1U);
  EXPECT_EQ(events.front().type, EventType::keyUp);
  EXPECT_EQ(events.front().keyCode, 0);
  EXPECT_TRUE(keys.isHeld(1));
  EXPECT_TRUE(keys.isHeld(2)) << "held, though nobody saw it go down";
  EXPECT_TRUE(keys.release(1, S)) << "still the press that was seen";
}

TEST(XkbLabels, WhatTheLastKeymapPrintsInTheLayoutInForce) {
  const auto keymap = [](const std::string& symbols) {
    return "xkb_keymap { xkb_keycodes { <AC01> = 38; };"
           " xkb_types { type \"ONE_LEVEL\" { modifiers = none; level_name[Level1] = \"Any\"; }; };"
           " xkb_compat { }; xkb_symbols { key <AC01> { " +
           symbols + " }; }; };" + '\0';
  };
  constexpr KeyCode A = 0;
  XkbLabels labels;
  EXPECT_EQ(labels.translate(A), std::nullopt) << "no keymap yet";
  labels.setKeymap(keymap("[ q ]"));
  labels.setKeymap("xkb_keymap { nothing of that kind");
  EXPECT_EQ(labels.translate(A), "q") << "no keymap, and nobody had asked before it came";
  labels.setKeymap(keymap("[ a ], [ Cyrillic_ef ]"));
  EXPECT_EQ(labels.translate(A), "a");
  for (const std::uint32_t layout : {1U, 3U, ~0U}) {
    labels.setLayout(layout);
    EXPECT_EQ(labels.translate(A), "ф") << layout;
  }
  labels.setKeymap(keymap("[ dead_acute ]"));
  EXPECT_EQ(labels.translate(A), std::nullopt) << "an accent is no character yet";
  EXPECT_EQ(labels.translate(60000), std::nullopt);
}

TEST(LockMark, TextThatIsNoneIsNoMark) {
  const LockMark mark{{12, 345}, {67, 890}};
  EXPECT_EQ(LockMark::parse(mark.text()), mark);
  for (const char* text : {"", "x", "12 345 67", "-1 2 3 4", "0 0 0 0"}) EXPECT_FALSE(LockMark::parse(text)) << text;
}

TEST(AbandonedLockPolicy, EndsALockThatNobodyHasTakenOver) {
  using Step = AbandonedLockPolicy::Step;
  const ProcessMark compositor{7, 1};
  const LockMark dead{{12, 345}, compositor};
  struct Case {
    const char* what;
    bool isMarked;
    AbandonedLockPolicy::Seen seen;
    Step before;
    Step after;
  };
  const std::vector<Case> cases{
      {"nobody came", true, {dead, false}, Step::look, Step::release},
      {"the system still counts the owner among the living", true, {dead, true}, Step::look, Step::release},
      {"it was given back", true, {std::nullopt}, Step::end, Step::end},
      {"no mark could be written", false, {std::nullopt}, Step::look, Step::release},
      {"the compositor is gone", true, {dead, false, false}, Step::end, Step::end},
  };
  for (const Case& c : cases) {
    AbandonedLockPolicy watch(dead.owner, c.isMarked, 100);
    EXPECT_EQ(watch.next(c.seen, 109.9), c.before) << c.what;
    EXPECT_EQ(watch.next(c.seen, 110), c.after) << c.what;
  }
}

TEST(AbandonedLockPolicy, LeavesALockToWhomHasTakenItOver) {
  const AbandonedLockPolicy::Seen taken{LockMark{{13, 678}, {7, 1}}, true};
  AbandonedLockPolicy watch({12, 345}, true, 0);
  EXPECT_EQ(watch.next(taken, 2), AbandonedLockPolicy::Step::look) << "its own watcher may not be there yet";
  EXPECT_EQ(watch.next(taken, 3), AbandonedLockPolicy::Step::end);
}

TEST(AbandonedLockPolicy, WaitsAnewForAnOwnerThatDiedAsWell) {
  const LockMark other{{13, 678}, {7, 1}};
  AbandonedLockPolicy watch({12, 345}, true, 0);
  EXPECT_EQ(watch.next({other, true}, 9), AbandonedLockPolicy::Step::look);
  EXPECT_EQ(watch.next({other, false}, 9.5), AbandonedLockPolicy::Step::look);
  EXPECT_EQ(watch.next({other, false}, 10), AbandonedLockPolicy::Step::look) << "the scheduler brings it back";
  EXPECT_EQ(watch.next({other, false}, 19.5), AbandonedLockPolicy::Step::release);
}

TEST(AbandonedLockPolicy, TriesAgainUntilTheCompositorHasNoticedAndNotForEver) {
  AbandonedLockPolicy watch({12, 345}, true, 0);
  const AbandonedLockPolicy::Seen seen{LockMark{{12, 345}, {7, 1}}};
  int attempts = 0;
  for (int i = 0; i < 1000; ++i) watch.tried(LockRelease::failed);
  for (; watch.next(seen, 10) == AbandonedLockPolicy::Step::release; ++attempts) watch.tried(LockRelease::owned);
  EXPECT_GE(attempts * AbandonedLockPolicy::PAUSE, 3);
  EXPECT_LE(attempts * AbandonedLockPolicy::PAUSE, 6);
}

}  // namespace
}  // namespace dormel::wayland::test
