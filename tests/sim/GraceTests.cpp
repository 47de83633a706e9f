// The unlock cycle: what the user earned, for as long as it was promised, and the lock's return.
#include <gtest/gtest.h>

#include "tests/sim/NightFixture.h"

namespace dormel {
namespace {

using Lines = std::vector<std::string>;

class GraceTest : public testing::Test {
 protected:
  GraceTest() {
    night.begin("2026-11-16 22:00:00");
    machine.advance(60);
  }

  NightFixture night;
  SimMachine& machine = night.machine;
};

TEST_F(GraceTest, AWholeNight) {
  NightFixture whole;
  SimMachine& m = whole.machine;
  whole.begin("2026-11-16 22:00:00");
  m.advance(60);
  m.keyboard.press(12);  // somebody types on
  m.keyboard.release(12);
  whole.unlock();
  m.advance(60);
  m.keyboard.press(12);
  m.keyboard.release(12);
  m.advanceTo("2026-11-17 08:00:00");
  const std::string records = "~/Library/Application Support/" + std::string(BUNDLE_IDENTIFIER);
  EXPECT_EQ(m.journal.text(),
            "22:00:00.000 start --scheduled\n"
            "22:00:00.000 application activated\n"
            "22:00:00.000 window 1 made, above everything, 0,0 1920x1080\n"
            "22:00:00.000 window 2 made, above everything, 1920,0 1280x1024\n"
            "22:00:00.000 window 1 alpha 0\n"
            "22:00:00.000 window 1 in\n"
            "22:00:00.000 window 2 alpha 0\n"
            "22:00:00.000 window 2 in\n"
            "22:00:00.000 presentation 378\n"
            "22:00:00.000 keyboard taken\n"
            "22:00:00.000 mkdir ~/Library\n"
            "22:00:00.000 mkdir ~/Library/Application Support\n"
            "22:00:00.000 mkdir " +
                records +
                "\n"
                "22:00:00.000 write " +
                records +
                "/.nights.json.tmp\n"
                "22:00:00.000 rename " +
                records +
                "/nights.json\n"
                "22:00:00.000 window 1 fades to 1 in 2.5 s ease-out\n"
                "22:00:00.000 window 2 fades to 1 in 2.5 s ease-out\n"
                "22:01:30.050 out: [grace] unlock #1 logged\n"
                "22:01:30.050 mkdir ~/Library/Logs\n"
                "22:01:30.050 mkdir ~/Library/Logs/Dormel\n"
                "22:01:30.050 write ~/Library/Logs/Dormel/dormel-unlock.log\n"
                "22:01:32.550 window 1 fades to 0 in 1.2 s ease-out\n"
                "22:01:32.550 window 2 fades to 0 in 1.2 s ease-out\n"
                "22:01:33.750 presentation 0\n"
                "22:01:33.750 window 1 out\n"
                "22:01:33.750 window 1 alpha 1\n"
                "22:01:33.750 window 2 out\n"
                "22:01:33.750 window 2 alpha 1\n"
                "22:01:33.750 window 3 made, floating, 0,0 400x80\n"
                "22:01:33.750 window 3 frame 1658,976 238x56\n"
                "22:01:33.750 window 3 in\n"
                "22:01:35.750 keyboard given back\n"
                "22:02:31.050 another application got key 12\n"
                "22:06:30.050 out: [reblock] next bypass requires 60s hold (unlock #2)\n"
                "22:06:30.050 application activated\n"
                "22:06:30.050 window 4 made, above everything, 0,0 1920x1080\n"
                "22:06:30.050 window 5 made, above everything, 1920,0 1280x1024\n"
                "22:06:30.050 window 4 alpha 0\n"
                "22:06:30.050 window 4 in\n"
                "22:06:30.050 window 5 alpha 0\n"
                "22:06:30.050 window 5 in\n"
                "22:06:30.050 presentation 378\n"
                "22:06:30.050 window 3 out\n"
                "22:06:30.050 keyboard taken\n"
                "22:06:30.050 window 4 fades to 1 in 2.5 s ease-out\n"
                "22:06:30.050 window 5 fades to 1 in 2.5 s ease-out\n"
                "06:00:00.000 keyboard given back\n"
                "06:00:00.000 window 4 out\n"
                "06:00:00.000 window 5 out\n"
                "06:00:00.000 presentation 0\n"
                "06:00:00.000 out: Blocking hours ended. Exiting cleanly.\n"
                "06:00:00.000 exit 0\n");
}

TEST_F(GraceTest, ALoweringThatIsOvertakenStopsAtItsNextStep) {
  const struct {
    const char* name;
    Seconds at;
  } steps[] = {{"confirming", 1.0}, {"content fading", 2.0}, {"windows fading", 3.0}, {"retiring", 4.5}};
  for (const auto& step : steps) {
    {
      NightFixture taken;  // down at once
      taken.begin("2026-11-16 22:00:00");
      taken.unlock();
      taken.machine.advance(step.at - 1);
      taken.session().deactivate();
      EXPECT_FALSE(taken.machine.keyboard.isTaken()) << step.name;
      taken.machine.journal.clear();
      taken.machine.advance(400);
      EXPECT_EQ(taken.machine.journal.lines(), Lines{}) << step.name;
      EXPECT_FALSE(taken.session().isFadingOut()) << step.name;
    }
    {
      NightFixture rebuilt;  // a new lock
      rebuilt.begin("2026-11-16 22:00:00");
      rebuilt.unlock();
      rebuilt.machine.advance(step.at - 1);
      rebuilt.session().activate(true);
      rebuilt.machine.advance(2.5);
      rebuilt.machine.windows.watchCover();
      rebuilt.machine.advance(100);
      EXPECT_EQ(rebuilt.machine.windows.leastCover(), 1) << step.name;
      EXPECT_EQ(rebuilt.machine.windows.visible().size(), 2U) << step.name << ": a pill over a lock";
      EXPECT_TRUE(rebuilt.machine.keyboard.isTaken()) << step.name;
      EXPECT_FALSE(rebuilt.session().isFadingOut() || rebuilt.session().showUnlockConfirm()) << step.name;
    }
  }
}

TEST_F(GraceTest, NothingPendingOutlivesItsSession) {
  for (const Seconds at : {0.0, 1.0, 2.0, 3.0, 4.0, 100.0, 299.5}) {
    SimMachine::Options options;
    options.start = "2026-11-16 21:00:00";
    SimMachine m(options);
    m.defaults.putBoolean(defaultsKey::onboardingComplete, true);
    m.defaults.putInteger(defaultsKey::blockStartHour, 22);
    std::shared_ptr<ScreenManager> session = ScreenManager::create();
    session->activate(true);
    pressAll(m, *session->bypassController());
    ASSERT_TRUE(m.timeline.advanceUntil([&] { return session->state() == SessionState::grace; }, 31));
    m.advance(at);
    const std::weak_ptr<ScreenManager> weak = session;
    session.reset();
    EXPECT_TRUE(weak.expired()) << "held by something pending, " << at << " s after the hold";
    m.settle();
    m.journal.clear();
    m.advanceTo("2026-11-17 07:00:00");
    for (const std::string& line : m.journal.lines()) {
      EXPECT_NE(line.find("keyboard given back"), std::string::npos) << at << ": " << line;
    }
    EXPECT_FALSE(m.keyboard.isTaken()) << at;
    EXPECT_FALSE(m.exitStatus()) << at << ": the watchdog outlived its session";
  }
}

TEST_F(GraceTest, WithoutAScreenThereIsNoPillAndTheCountdownRuns) {
  machine.screens.pull("DP-1");
  machine.screens.pull("DP-2");
  night.unlock();
  machine.advance(10);
  EXPECT_TRUE(machine.windows.visible().empty());
  machine.screens.plug("DP-1", {0, 0, 1920, 1080});
  machine.advance(300);
  EXPECT_EQ(night.session().state(), SessionState::blocked);
  EXPECT_EQ(machine.windows.cover(), 1);
}

TEST_F(GraceTest, TheHoursMayEndInIt) {
  NightFixture late;  // seen when the lock is about to return, between two checks of the hours
  late.begin("2026-11-17 05:50:08");
  late.machine.advanceTo("2026-11-17 05:54:34");
  late.unlock();
  late.machine.advanceTo("2026-11-17 06:01:00");
  EXPECT_EQ(late.machine.output.lines().back(), "Blocking hours ended during grace period. Exiting cleanly.");
  EXPECT_EQ(late.machine.exitStatus(), 0);
}

TEST_F(GraceTest, ARevokedPermissionWaitsForTheNextLock) {
  night.unlock();
  machine.accessibility.setTrusted(false);
  machine.journal.clear();
  machine.advance(10);
  for (const std::string& line : machine.journal.lines()) EXPECT_EQ(line.find("a11y"), std::string::npos) << line;
  machine.advance(300);
  EXPECT_EQ(machine.windows.cover(), 1);
  const Lines& lines = machine.output.lines();
  EXPECT_EQ(Lines(lines.end() - 2, lines.end()),
            (Lines{"Accessibility permission not granted. Event tap unavailable.",
                   "Warning: KeyInterceptor failed to start. Keyboard events will only be captured via window."}));
  EXPECT_NEAR(night.unlock(), 60, 0.11) << "by the windows";
}

}  // namespace
}  // namespace dormel
