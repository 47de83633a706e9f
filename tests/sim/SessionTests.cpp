// One session: whether it locks, what it watches, and how it ends.
#include <gtest/gtest.h>

#include "core/DebugLog.h"
#include "tests/sim/NightFixture.h"

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
    NightFixture night;
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
  NightFixture night;
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

TEST(Session, TheKernelEndsItWhenEvenTheWatchdogIsStuck) {
  NightFixture night;
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
  NightFixture night;
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
  NightFixture night;
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

TEST(Session, ARebuildPutsTheNewWindowsUpBeforeTheOldOnesGo) {
  NightFixture night;
  night.begin("2026-11-16 22:00:00");
  night.machine.advance(5);
  night.machine.journal.clear();
  night.machine.screens.noticeOnly();  // nothing that matters
  night.machine.settle();
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
  NightFixture night;
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
  NightFixture night;
  night.machine.keyboard.setTapsImpossible(true);
  night.begin("2026-11-16 22:00:00");
  EXPECT_EQ(night.machine.output.lines(),
            (Lines{"Failed to create event tap. Is Accessibility permission granted?",
                   "Warning: KeyInterceptor failed to start. Keyboard events will only be captured via window."}));
  EXPECT_NEAR(night.unlock(), 30, 0.11);
  EXPECT_TRUE(night.machine.keyboard.foreignKeys().empty());
}

}  // namespace
}  // namespace dormel
