// One session: whether it locks, what it watches, and how it ends.
#include <gtest/gtest.h>

#include "core/DebugLog.h"
#include "tests/sim/Night.h"

namespace dormel {
namespace {

using Lines = std::vector<std::string>;

TEST(Session, LocksOnlyWhenEverythingSaysSo) {
  const struct {
    const char* name;
    bool complete, enabled, trusted;
    int start, end;
    const char* moment;
    const char* line;
  } rows[] = {
      {"not set up", false, true, true, 22, 6, "2026-11-16 23:00:00",
       "Onboarding not complete — not blocking. Exiting."},
      {"not set up, and off", false, false, false, 22, 6, "2026-11-16 23:00:00",
       "Onboarding not complete — not blocking. Exiting."},
      {"off", true, false, true, 22, 6, "2026-11-16 23:00:00",
       "Dormel is disabled by the user — not blocking. Exiting."},
      {"last second before", true, true, true, 22, 6, "2026-11-16 21:59:59",
       "Outside blocking hours (22:00–6:00). Exiting."},
      {"first second after", true, true, false, 1, 6, "2026-11-17 06:00:00",
       "Outside blocking hours (1:00–6:00). Exiting."},
      {"no hours", true, true, true, 6, 6, "2026-11-17 06:00:00", "Outside blocking hours (6:00–6:00). Exiting."},
  };
  for (const auto& row : rows) {
    Night night;
    night.setHours(row.start, row.end);
    night.machine.defaults.putBoolean(defaultsKey::onboardingComplete, row.complete);
    night.machine.defaults.putBoolean(defaultsKey::blockingEnabled, row.enabled);
    night.machine.accessibility.setTrusted(row.trusted);
    night.begin(row.moment);
    const std::string at = std::string(row.moment).substr(11) + ".000 ";
    EXPECT_EQ(night.machine.journal.lines(), (Lines{at + "start --scheduled", at + "out: " + row.line, at + "exit 0"}))
        << row.name;
  }
}

TEST(Session, IsStartedAgainWhenTheHourStrikesWhileItEnds) {
  Night night;
  night.machine.defaults.putBoolean(defaultsKey::debugLoggingEnabled, true);
  night.machine.timeline.setSerialQueuesHang(true);
  night.machine.setProgram([](const Lines&) -> std::shared_ptr<void> {
    DebugLog::shared().append("something for the disk that hangs");
    ScreenManager::create([] { return std::make_shared<BlankCard>(); })->activate(true);
    return nullptr;
  });
  for (const auto& [moment, status] : {std::pair("2026-11-16 21:59:57", 0), {"2026-11-16 21:59:59", 1}}) {
    night.begin(moment);
    EXPECT_EQ(night.machine.exitStatus(), status) << moment;
  }
}

TEST(Session, CoversEveryScreenAndFadesIn) {
  Night night;
  night.begin("2026-11-16 22:00:00");
  EXPECT_EQ(night.session().state(), SessionState::blocked);
  EXPECT_EQ(night.session().windows().size(), 2U);
  EXPECT_EQ(night.machine.application.presentationOptions(), 378U);
  EXPECT_TRUE(night.machine.keyboard.isTaken()) << "keys are taken before anything is dark";
  EXPECT_EQ(night.machine.windows.cover(), 0);
  double before = 0;
  for (int i = 1; i < 25; ++i) {
    night.machine.advance(0.1);
    EXPECT_GT(night.machine.windows.cover(), before);
    before = night.machine.windows.cover();
  }
  EXPECT_LT(before, 1);
  night.machine.advance(0.1);
  EXPECT_EQ(night.machine.windows.cover(), 1);
  for (SimWindow* window : night.machine.windows.visible()) {
    EXPECT_EQ(window->style().collectionBehavior, 337U);
    EXPECT_FALSE(window->style().hidesOnDeactivate);
  }
}

TEST(Session, LastsUntilTheEndHourWhateverTheClocksDo) {
  const struct {
    const char* name;
    const char* begin;
    int start, end;
    double hours;
  } rows[] = {
      {"an ordinary night", "2026-11-16 22:00:00", 22, 6, 8},
      {"clocks go back at 3", "2026-10-24 22:00:00", 22, 6, 9},
      {"clocks go forward at 2", "2027-03-27 22:00:00", 22, 6, 7},
      {"the hour that comes twice", "2026-10-25 02:00:00", 2, 3, 2},
      {"an end that is skipped", "2027-03-28 01:00:00", 1, 2, 1},
  };
  for (const auto& row : rows) {
    Night night;
    night.machine.calendar.setOffset(SimCalendar::Offset(120));
    night.machine.calendar.addTransition("2026-10-25 01:00:00", SimCalendar::Offset(60));
    night.machine.calendar.addTransition("2027-03-28 01:00:00", SimCalendar::Offset(120));
    night.setHours(row.start, row.end);
    night.machine.setWallClock(row.begin);
    night.begin();
    night.machine.advance(3);
    night.machine.windows.watchCover();
    night.machine.advance(row.hours * 3600 - 3.001);
    EXPECT_EQ(night.machine.windows.leastCover(), 1) << row.name;
    EXPECT_FALSE(night.machine.exitStatus()) << row.name;
    night.machine.advance(0.001);
    EXPECT_EQ(night.machine.exitStatus(), 0) << row.name;
    EXPECT_EQ(night.machine.windows.cover(), 0) << row.name;
    EXPECT_FALSE(night.machine.keyboard.isTaken()) << row.name;
    EXPECT_EQ(night.machine.application.presentationOptions(), 0U) << row.name;
  }
}

TEST(Session, FollowsTheWallClockWhereverItIsSet) {
  {
    Night night;  // an hour back at 5:30: an hour more
    night.begin("2026-11-16 22:00:00");
    night.machine.advanceTo("2026-11-17 05:30:00");
    night.machine.jumpWallClock(-3600);
    night.machine.advance(5399);
    EXPECT_EQ(night.machine.windows.cover(), 1);
    night.machine.advance(11);
    EXPECT_EQ(night.machine.exitStatus(), 0);
  }
  {
    Night night;  // past the end: gone within ten seconds
    night.begin("2026-11-16 22:00:00");
    night.machine.advance(100);
    night.machine.setWallClock("2026-11-17 09:00:00");
    night.machine.advance(10);
    EXPECT_EQ(night.machine.exitStatus(), 0);
  }
  {
    Night night;  // before the start: gone, and back when it is time again
    night.arm(22);
    night.machine.advance(20);
    ASSERT_TRUE(night.hasSession());
    night.machine.setWallClock("2026-11-16 21:00:00");
    night.machine.advance(10);
    EXPECT_EQ(night.machine.exitStatus(), 0);
    night.machine.advanceTo("2026-11-16 21:59:59");
    EXPECT_FALSE(night.hasSession());
    night.machine.advance(1);
    EXPECT_TRUE(night.hasSession());
  }
  {
    Night night;  // the schedule changed under way: seen at the next check
    night.begin("2026-11-16 22:00:00");
    night.machine.advance(5);
    night.setHours(0, 6);
    night.machine.advance(10);
    EXPECT_EQ(night.machine.exitStatus(), 0);
  }
}

TEST(Session, TheKernelEndsItWhenEvenTheWatchdogIsStuck) {
  Night night;
  night.begin("2026-11-16 22:00:04");
  night.setHours(22, 7);  // the night grows while it lasts
  night.machine.advanceTo("2026-11-17 06:59:55");
  night.machine.timeline.stopProcess(7200);
  night.machine.journal.clear();
  night.machine.advanceTo("2026-11-17 08:00:00");
  EXPECT_EQ(night.machine.exitStatus(), 137);
  EXPECT_EQ(night.machine.journal.lines().front(), "07:00:20.000 kill signal");
}

TEST(Session, TheWatchdogEndsItWhenTheMainThreadIsStuck) {
  Night night;
  night.begin("2026-11-16 22:00:04");
  night.machine.advanceTo("2026-11-17 05:59:50");
  night.machine.stallMain(7200);
  night.machine.journal.clear();
  night.machine.advanceTo("2026-11-17 07:00:00");
  EXPECT_EQ(night.machine.journal.lines(),
            (Lines{"06:00:04.000 out: [watchdog] Outside blocking hours. Force exiting.", "06:00:04.000 exit 0",
                   "06:00:04.000 windows gone with the process", "06:00:04.000 keyboard given back"}));
}

TEST(Session, SleepDropsTheHoldAndWakingLateEndsTheNight) {
  Night night;
  night.begin("2026-11-16 22:00:00");
  pressAll(night.machine, night.controller());
  night.machine.advance(25);
  night.machine.sleep(3600);
  EXPECT_EQ(night.controller().liveProgress(), 0);
  EXPECT_TRUE(night.controller().pressedKeys().empty());
  night.machine.advance(60);  // the keys are still down, but nobody pressed them since
  EXPECT_EQ(night.session().state(), SessionState::blocked);
  releaseAll(night.machine);
  for (const Notice notice : {Notice::willSleep, Notice::didWake}) {  // either will do
    pressAll(night.machine, night.controller());
    night.machine.notices.post(notice);
    night.machine.settle();
    EXPECT_TRUE(night.controller().pressedKeys().empty());
    releaseAll(night.machine);
  }
  EXPECT_NEAR(night.unlock(), 30, 0.11) << "from nothing";

  night.machine.advance(310);
  night.machine.journal.clear();
  night.machine.sleep(8 * 3600);
  EXPECT_EQ(night.machine.output.lines().back(), "Woke outside blocking hours. Exiting.");
  EXPECT_EQ(night.machine.exitStatus(), 0);
  EXPECT_EQ(night.machine.application.presentationOptions(), 0U);
  EXPECT_TRUE(night.machine.windows.visible().empty());
}

TEST(Session, ScreensThatComeAndGoWhileLockedStayDark) {
  const struct {
    const char* name;
    std::function<void(SimScreens&)> change;
    std::size_t windows;
    bool rebuilds;
  } rows[] = {
      {"plugged",
       [](SimScreens& s) {
         s.plug("DP-3", {3200, 0, 800, 600});
       },
       3, true},
      {"pulled", [](SimScreens& s) { s.pull("DP-2"); }, 1, true},
      {"the main one pulled", [](SimScreens& s) { s.pull("DP-1"); }, 1, true},
      {"turned",
       [](SimScreens& s) {
         s.resize("DP-2", {1920, 0, 1024, 1280});
       },
       2, true},
      {"all pulled", [](SimScreens& s) { s.pull("DP-1"), s.pull("DP-2"); }, 0, true},
      {"nothing that matters", [](SimScreens& s) { s.noticeOnly(); }, 2, false},
  };
  for (const auto& row : rows) {
    Night night;
    night.begin("2026-11-16 22:00:00");
    night.machine.advance(5);
    const int epoch = night.session().overlayEpoch();
    const auto old = night.session().windows();  // ordered out, not merely dropped
    night.machine.windows.watchCover();
    night.machine.journal.clear();
    row.change(night.machine.screens);
    night.machine.settle();
    EXPECT_EQ(night.machine.windows.cover(), 1) << row.name;
    EXPECT_EQ(night.machine.windows.visible().size(), row.windows) << row.name << ": something stayed behind";
    EXPECT_EQ(night.session().overlayEpoch(), epoch) << row.name;
    EXPECT_EQ(night.machine.journal.text().find("application activated") != std::string::npos, row.rebuilds)
        << row.name;
    EXPECT_EQ(night.machine.windows.leastCover(), 1) << row.name << ": a gap";
  }
}

TEST(Session, ARebuildPutsTheNewWindowsUpBeforeTheOldOnesGo) {
  Night night;
  night.begin("2026-11-16 22:00:00");
  night.machine.advance(5);
  night.machine.journal.clear();
  night.machine.screens.plug("DP-3", {3200, 0, 800, 600});
  night.machine.settle();
  EXPECT_EQ(night.machine.journal.text(),
            "22:00:05.000 screen DP-3 plugged\n"
            "22:00:05.000 application activated\n"
            "22:00:05.000 window 3 made, above everything, 0,0 1920x1080\n"
            "22:00:05.000 window 4 made, above everything, 1920,0 1280x1024\n"
            "22:00:05.000 window 5 made, above everything, 3200,0 800x600\n"
            "22:00:05.000 window 3 in\n"
            "22:00:05.000 window 4 in\n"
            "22:00:05.000 window 5 in\n"
            "22:00:05.000 presentation 378\n"
            "22:00:05.000 window 1 out\n"
            "22:00:05.000 window 2 out\n");
}

TEST(Session, PermissionThatComesAndGoesUnderTheLock) {
  Night night;
  night.begin("2026-11-16 22:00:00");
  night.machine.advance(4);
  night.machine.journal.clear();
  night.machine.accessibility.setTrusted(false);
  night.machine.advance(6);
  night.machine.accessibility.setTrusted(true);
  night.machine.advance(6);
  EXPECT_EQ(night.machine.journal.text(),
            "22:00:06.000 out: [a11y] Accessibility changed → false; rebuilding lockdown.\n"
            "22:00:06.000 presentation 378\n"
            "22:00:12.000 out: [a11y] Accessibility changed → true; rebuilding lockdown.\n"
            "22:00:12.000 presentation 378\n"
            "22:00:12.000 keyboard given back\n"
            "22:00:12.000 keyboard taken\n");
}

TEST(Session, WithoutATapTheWindowsTakeTheKeys) {
  Night night;
  night.machine.keyboard.setTapsImpossible(true);
  night.begin("2026-11-16 22:00:00");
  EXPECT_EQ(night.machine.output.lines(),
            (Lines{"Failed to create event tap. Is Accessibility permission granted?",
                   "Warning: KeyInterceptor failed to start. Keyboard events will only be captured via window."}));
  EXPECT_NEAR(night.unlock(), 30, 0.11);
  EXPECT_TRUE(night.machine.keyboard.foreignKeys().empty());
}

TEST(Session, ComesBackWhenItIsEndedBeforeItsTime) {
  Night night;
  night.arm(22);
  night.machine.advanceTo("2026-11-16 23:00:00");
  night.machine.journal.clear();
  night.machine.process.terminate();
  night.machine.settle();
  EXPECT_EQ(night.machine.windows.cover(), 0);
  night.machine.advance(0.999);
  EXPECT_FALSE(night.hasSession());
  night.machine.advance(0.001);
  EXPECT_TRUE(night.hasSession());
  night.machine.process.kill();
  night.machine.advance(1);
  EXPECT_EQ(night.session().state(), SessionState::blocked);
  EXPECT_TRUE(night.machine.keyboard.isTaken());
  night.machine.advance(2.5);
  EXPECT_EQ(night.machine.windows.cover(), 1);
  EXPECT_EQ(night.controller().holdDuration(), 30);
  night.machine.advanceTo("2026-11-17 21:00:00");
  std::string ends;
  for (const auto& ending : night.machine.endings()) ends += std::to_string(ending.status) + " ";
  EXPECT_EQ(ends, "1 137 0 ");
  night.machine.advanceTo("2026-11-17 22:00:00");
  EXPECT_TRUE(night.hasSession()) << "the next night";
}

TEST(Session, ATerminationWaitsForTheMainThreadAndAKillDoesNot) {
  Night night;
  night.begin("2026-11-16 22:00:00");
  night.machine.stallMain(30);
  night.machine.process.terminate();
  night.machine.advance(29.9);
  EXPECT_FALSE(night.machine.exitStatus());
  night.machine.advance(0.1);
  EXPECT_EQ(night.machine.exitStatus(), 1);
}

}  // namespace
}  // namespace dormel
