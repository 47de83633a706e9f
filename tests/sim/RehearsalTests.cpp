// The two rehearsals, which a user can always leave.
#include <gtest/gtest.h>

#include "core/DebugLog.h"
#include "tests/sim/NightFixture.h"

namespace dormel {
namespace {

using Lines = std::vector<std::string>;

constexpr KeyCode ESCAPE = 53;

class RehearsalTest : public testing::Test {
 protected:
  RehearsalTest() {
    machine.windows.setFirstShown([](View& view) {
      if (view.kind() == ViewKind::blockerOverlay) static_cast<BlockerOverlayView&>(view).onAppear();
    });
  }

  void startTest(bool trusted = true) {
    machine.accessibility.setTrusted(trusted);
    session->startTest(trusted, [this] {
      EXPECT_EQ(session->state(), SessionState::idle);
      ++ends;
    });
  }
  bool startDemo() {
    return session->startOnboardingDemo([this] { ++ends; });
  }
  void hold(Seconds duration) {
    pressAll(machine, *session->bypassController());
    machine.advance(duration);
    releaseAll(machine);
    machine.advance(0.05);  // until the poll has seen it
  }
  /// The debug log without the challenge's own lines.
  [[nodiscard]] static std::string sessionTrail() {
    std::string trail;
    for (const std::string& line : DebugLog::shared().lines()) {
      const std::string_view text = std::string_view(line).substr(sizeof "21:00:00.000  " - 1);
      bool challenge = false;
      for (const char* lead : {"↓", "↑", "⇧", "⌫", "⟳", "…", "▶", "⏸", "⏹", "✔", "  "}) {
        challenge = challenge || text.starts_with(lead);
      }
      if (!challenge) trail += line + "\n";
    }
    return trail;
  }
  [[nodiscard]] std::string lastTrace() const {
    const auto& lines = DebugLog::shared().lines();
    return lines.empty() ? std::string() : lines.back().substr(sizeof "21:00:00.000  " - 1);
  }
  void expectOver(const char* how) {
    EXPECT_EQ(lastTrace(), how);
    EXPECT_EQ(session->state(), SessionState::idle);
    EXPECT_TRUE(session->windows().empty());
    EXPECT_TRUE(machine.windows.visible().empty());
    EXPECT_FALSE(machine.keyboard.isTaken());
    EXPECT_EQ(machine.application.presentationOptions(), 0U);
    machine.settle();
    machine.advance(200);
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(session->unlockCount(), 0);
    EXPECT_FALSE(machine.files.exists(Config::unlockLogPath()));
  }

  SimMachine machine;  // 21:00, nothing set up: rehearsals look at no hours
  std::shared_ptr<ScreenManager> session = ScreenManager::create();
  int ends = 0;
};

constexpr const char* PASSED = "═══ TEST PASSED · hold completed ═══";
constexpr const char* CANCELLED = "═══ TEST CANCELLED ═══";

TEST_F(RehearsalTest, ATestRunIsTheWholeCycleInMiniature) {
  startTest();
  EXPECT_EQ(machine.application.presentationOptions(), 0U) << "the desktop stays leavable";
  hold(5.1);
  EXPECT_EQ(session->state(), SessionState::grace);
  EXPECT_EQ(session->graceSecondsRemaining(), 10);
  machine.advance(4);
  EXPECT_EQ(machine.windows.cover(), 0);
  machine.advance(6);
  EXPECT_EQ(session->state(), SessionState::blocked);
  hold(11.9);
  hold(12.1);
  EXPECT_EQ(ends, 0);
  machine.advance(3.7);
  expectOver(PASSED);
  EXPECT_TRUE(DebugLog::shared().enabled());
  EXPECT_EQ(sessionTrail(),
            "21:00:00.000  ═══ TEST START · hold 5s → grace 10s → re-block → hold 12s · Esc cancels · AX=on ═══\n"
            "21:00:00.000  legend: letters show events/hardware (·=up ✓=down); the poll prunes stale letter keyUps via "
            "hardware\n"
            "21:00:00.000  input: global event tap (keys consumed system-wide) · Esc cancels\n"
            "21:00:05.050  hold completed — unlock lift, 10s grace, then re-block\n"
            "21:00:15.050  grace over — re-blocking; hold again to finish the test\n"
            "21:00:39.150  second hold completed — full loop proven, ending test\n"
            "21:00:42.850  ═══ TEST PASSED · hold completed ═══\n");
}

TEST_F(RehearsalTest, ATestRunWithoutThePermissionSaysSo) {
  startTest(false);
  EXPECT_FALSE(machine.keyboard.isTaken());
  machine.keyboard.press(ESCAPE);
  machine.settle();
  expectOver(CANCELLED);
  EXPECT_EQ(sessionTrail(),
            "21:00:00.000  ═══ TEST START · hold 5s → grace 10s → re-block → hold 12s · Esc cancels · AX=off ═══\n"
            "21:00:00.000  legend: letters show events/hardware (·=up ✓=down); the poll prunes stale letter keyUps via "
            "hardware\n"
            "21:00:00.000  ⚠ no Accessibility — keys are NOT captured system-wide; other apps may grab your shortcuts. "
            "Grant AX for a real test.\n"
            "21:00:00.000  ═══ TEST CANCELLED ═══\n");
}

TEST_F(RehearsalTest, EveryStepHasNinetySeconds) {
  startTest();
  machine.advance(84);
  hold(5.1);  // counts as progress
  machine.advance(85);
  EXPECT_EQ(ends, 0);
  machine.advance(15.1);  // the lock's return counted, too
  EXPECT_EQ(ends, 1);
  expectOver(CANCELLED);
}

TEST_F(RehearsalTest, TheWatchdogEndsOneWhoseMainThreadIsStuck) {
  const struct {
    bool isDemo, watchdogIsStuckToo;
    Seconds limit;
    int status;
  } cases[] = {{false, false, 100, 1}, {true, false, 40, 1}, {false, true, 120, 137}, {true, true, 60, 137}};
  for (const auto& row : cases) {
    SCOPED_TRACE(row.limit);
    SimMachine fresh;
    const auto stuck = ScreenManager::create();
    if (row.isDemo) {
      EXPECT_TRUE(stuck->startOnboardingDemo({}));
    } else {
      stuck->startTest(true, {});
    }
    fresh.settle();
    if (row.watchdogIsStuckToo) {
      fresh.timeline.stopProcess(7200);
    } else {
      fresh.stallMain(7200);
    }
    fresh.advance(row.limit - 0.1);
    EXPECT_EQ(fresh.exitStatus(), std::nullopt);
    fresh.advance(0.2);
    EXPECT_EQ(fresh.exitStatus(), row.status);
    EXPECT_EQ(fresh.windows.cover(), 0);
    EXPECT_FALSE(fresh.keyboard.isTaken());
  }
}

TEST_F(RehearsalTest, AnOldLoweringDoesNotEndTheNextRun) {
  for (const Seconds at : {1.0, 2.0, 3.0}) {
    EXPECT_TRUE(startDemo());
    hold(5.1);
    machine.advance(at);
    for (int run = 0; run < 2; ++run) {
      machine.keyboard.press(ESCAPE);
      machine.settle();
      machine.keyboard.release(ESCAPE);
      EXPECT_EQ(session->state(), SessionState::idle);
      if (run == 1) break;
      EXPECT_TRUE(startDemo());
      machine.advance(4);
      EXPECT_EQ(session->state(), SessionState::blocked) << at;
      EXPECT_EQ(machine.windows.cover(), 1) << at;
    }
  }
  EXPECT_EQ(ends, 6);
}

TEST_F(RehearsalTest, ADemoIsOneHold) {
  machine.accessibility.setTrusted(false);
  EXPECT_FALSE(startDemo());
  EXPECT_TRUE(machine.windows.visible().empty());
  machine.accessibility.setTrusted(true);
  DebugLog::shared().setEnabled(true);
  EXPECT_TRUE(startDemo());
  machine.screens.plug("DP-2", {1920, 0, 1280, 1024});
  machine.settle();
  EXPECT_EQ(machine.windows.visible().size(), 1U) << "nobody watches the screens in a rehearsal";
  hold(5.1);
  EXPECT_TRUE(session->showUnlockConfirm());
  machine.advance(3.7);
  expectOver(PASSED);
}

TEST_F(RehearsalTest, ADemoWritesNothing) {
  EXPECT_TRUE(startDemo());
  hold(5.1);
  machine.advance(10);
  EXPECT_EQ(ends, 1);
  EXPECT_TRUE(DebugLog::shared().lines().empty()) << "it switches no log on";
  EXPECT_FALSE(machine.files.exists("/home/user/Library"));
  EXPECT_EQ(machine.journal.text().find("default "), std::string::npos);
}

TEST_F(RehearsalTest, ADemoLeftAloneFadesAwayByItself) {
  DebugLog::shared().setEnabled(true);
  EXPECT_TRUE(startDemo());
  machine.advance(30);
  EXPECT_FALSE(session->showUnlockConfirm()) << "nothing to confirm";
  EXPECT_TRUE(session->isFadingOut());
  EXPECT_EQ(ends, 0);
  machine.advance(2.2);
  expectOver(CANCELLED);
}

}  // namespace
}  // namespace dormel
