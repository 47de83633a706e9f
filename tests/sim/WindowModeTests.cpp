// The program as its user opens it: one window, a menu, and a scheduler's job that is kept healthy.
#include <gtest/gtest.h>

#include "app/MainMenuItems.h"
#include "platform/linux/DesktopWording.h"
#include "tests/sim/Program.h"

namespace dormel {
namespace {

using Lines = Program::Lines;
using Status = LoginItemStatus;

const std::string WRITE = "write ~/Library/LaunchAgents/" + std::string(BUNDLE_IDENTIFIER) + ".plist";
const std::string RECOVERY =
    "alert, warning: Dormel is switched off / Dormel was turned off in System Settings → Login Items & Extensions, so "
    "it will not lock at night. macOS only lets you flip that switch yourself.\\n\\nIn the list, find \"Dormel\" and "
    "turn it back on — you may need to scroll down. Then come back here, and Dormel re-arms itself. / [Open Login "
    "Items] [Not Now]";
const std::string REFUSED =
    "out: AgentManager: bootstrap FAILED (exit 5) — agent NOT loaded, Dormel will not fire tonight";
const std::string TRAIL_BACK = "self-heal: Login Items switched back on — agent re-armed";

/// The trail without what the challenge draws at its creation.
Lines appTrail() {
  Lines lines = Program::trail();
  std::erase_if(lines, [](const std::string& line) { return line.starts_with("⟳"); });
  return lines;
}

/// The effects without the debug log's file.
Lines effects(Program& program) {
  Lines lines = program.effects();
  std::erase_if(lines, [](const std::string& line) { return line.ends_with("debug.log"); });
  return lines;
}

TEST(WindowMode, OpensWithItsMenuAndItsWindowInFront) {
  Program program;
  program.arm();
  program.open();
  EXPECT_EQ(effects(program), (Lines{"start", "activation policy regular", "menu installed, windows in Window",
                                     "application activated", "main window 1 made, 460x660 Dormel",
                                     "main window 1 front", "application activated", PRINT + " = 0"}));
  EXPECT_EQ(program.delegate().mode(), AppDelegate::Mode::window);
  EXPECT_EQ(program.delegate().screenManager()->state(), SessionState::idle);
}

TEST(WindowMode, YourNightsAreAWindowBesideTheSettings) {
  Program program;
  program.arm();
  program.open();
  const auto nights = [&] { program.machine.run([&] { program.delegate().showNights(); }); };
  const auto since = [&] {
    program.machine.settle();
    return effects(program);
  };
  static_cast<void>(since());
  nights();
  EXPECT_EQ(since(), (Lines{"main window 2 made, 460x552 Your nights", "main window 2 front"}));
  nights();
  EXPECT_EQ(since(), (Lines{"main window 2 front"})) << "one at a time";
  program.machine.mainMenu.press("w");
  EXPECT_EQ(since(), (Lines{"menu: Close", "main window 2 closed by the user"})) << "the program goes on";
  nights();
  EXPECT_EQ(since(), (Lines{"main window 3 made, 460x552 Your nights", "main window 3 front"}));
}

TEST(WindowMode, HealsALostJobOrAsksForTheSwitch) {
  const Lines healed{PRINT + " = 113", WRITE, BOOTOUT + " = 3", BOOTSTRAP + " = 0",
                     "out: Self-heal: LaunchAgent not loaded — re-armed."};
  const Lines refused{PRINT + " = 113", WRITE, BOOTOUT + " = 3", BOOTSTRAP + " = 5", REFUSED};
  Lines refusedAloud = refused;
  refusedAloud.push_back(RECOVERY);
  const char* const healedTrail = "self-heal: agent not loaded at Settings launch — re-armed";
  const char* const offTrail = "self-heal: Dormel is switched off in Login Items — asking the user";
  const Lines refusedTrail{"agent bootstrap FAILED exit=5"};
  const Lines askedTrail{refusedTrail.front(), "self-heal: re-arm bootstrap FAILED — asking the user"};

  const struct {
    const char* name;
    bool complete, enabled, loaded, refused;
    Status status;
    Lines effects, trail;
  } rows[] = {
      {"all is well", true, true, true, false, Status::enabled, {PRINT + " = 0"}, {}},
      {"off, but still loaded", true, true, true, false, Status::requiresApproval, {PRINT + " = 0"}, {}},
      {"not set up", false, true, false, false, Status::enabled, {}, {}},
      {"lost", true, true, false, false, Status::enabled, healed, {healedTrail}},
      {"lost, unknown to the desktop", true, true, false, false, Status::notFound, healed, {healedTrail}},
      {"lost, never registered", true, true, false, false, Status::notRegistered, healed, {healedTrail}},
      {"lost, lock off", true, false, false, false, Status::enabled, healed, {healedTrail}},
      {"off", true, true, false, true, Status::requiresApproval, {PRINT + " = 113", RECOVERY}, {offTrail}},
      {"off, lock off too", true, false, false, true, Status::requiresApproval, {PRINT + " = 113"}, {offTrail}},
      {"refused", true, true, false, true, Status::enabled, refusedAloud, askedTrail},
      {"refused, lock off", true, false, false, true, Status::enabled, refused, refusedTrail},
  };
  for (const auto& row : rows) {
    Program program;
    program.machine.defaults.putBoolean(defaultsKey::onboardingComplete, row.complete);
    program.machine.defaults.putBoolean(defaultsKey::blockingEnabled, row.enabled);
    if (row.loaded) program.arm();
    program.machine.scheduler.setBootstrapFailure(row.refused ? std::optional(5) : std::nullopt);
    program.machine.loginItems.setStatus(row.status);
    program.open();
    program.machine.advance(60);
    Lines seen = effects(program);
    ASSERT_GT(seen.size(), 6U);
    seen.erase(seen.begin(), seen.begin() + 7);  // the start, as above
    EXPECT_EQ(seen, row.effects) << row.name;
    EXPECT_EQ(appTrail(), row.trail) << row.name;
    EXPECT_EQ(program.delegate().recoveryAlertVisible(), program.machine.alerts.shown().size() == 1) << row.name;
  }
}

TEST(WindowMode, OffersNoPageThatCannotBeOpened) {
  const DesktopWording wording([] { return DesktopFacts{}; });
  Program program;
  program.machine.wording.speakAs(wording);
  program.machine.loginItems.setStatus(Status::requiresApproval);
  program.open();
  program.machine.settle();
  ASSERT_EQ(program.machine.alerts.shown().size(), 1U);
  EXPECT_EQ(program.machine.alerts.shown().front().buttons, Lines{"OK"});
  program.machine.journal.clear();
  program.answer("OK");
  EXPECT_EQ(effects(program), Lines{"alert answered: OK"});
}

TEST(WindowMode, LooksForTheSwitchWheneverTheUserComesBack) {
  const Lines rearmed{PRINT + " = 113", WRITE, BOOTOUT + " = 3", BOOTSTRAP + " = 0"};
  Lines takenOff = rearmed;
  takenOff.insert(takenOff.begin(), "alert taken off: Dormel is switched off");
  const Lines opened{"alert answered: Open Login Items", "login items page opened"};
  const Lines notNow{"alert answered: Not Now"};
  const struct {
    const char* name;
    const char* answer;  // null: the alert still stands
    bool stillOff, loadedMeanwhile;
    Lines answered, back;
  } rows[] = {
      {"by way of the button", "Open Login Items", false, false, opened, rearmed},
      {"by a way of its own", "Not Now", false, false, notNow, rearmed},
      {"with the alert still open", nullptr, false, false, {}, takenOff},
      {"nothing changed", "Open Login Items", true, false, opened, {}},
      {"nothing changed, alert open", nullptr, true, false, {}, {}},
      {"loaded by the desktop already", "Not Now", false, true, notNow, {PRINT + " = 0"}},
  };
  for (const auto& row : rows) {
    Program program;
    SimMachine& machine = program.machine;
    machine.scheduler.setSwitchedOff(true);
    machine.loginItems.setStatus(Status::requiresApproval);
    program.open();
    machine.journal.clear();
    program.delegate().beginLoginItemsRecovery();
    EXPECT_EQ(machine.alerts.shown().size(), 1U) << row.name << ": one is enough";
    if (row.answer != nullptr) program.answer(row.answer);
    EXPECT_EQ(effects(program), row.answered) << row.name;
    EXPECT_EQ(program.delegate().recoveryAlertVisible(), row.answer == nullptr) << row.name;

    machine.application.leave();
    if (!row.stillOff) {
      machine.scheduler.setSwitchedOff(false);
      machine.loginItems.setStatus(Status::enabled);
    }
    if (row.loadedMeanwhile) program.arm();
    machine.application.comeBack();
    machine.settle();
    EXPECT_EQ(effects(program), row.back) << row.name;
    EXPECT_EQ(program.delegate().awaitingLoginItemsFix(), row.stillOff) << row.name;
    EXPECT_EQ(appTrail().back() == TRAIL_BACK, !row.stillOff) << row.name;
    EXPECT_EQ(program.isArmed(), !row.stillOff) << row.name;

    machine.application.leave();
    machine.application.comeBack();
    machine.settle();
    EXPECT_EQ(effects(program), Lines{}) << row.name << ": a second return";
  }
}

TEST(WindowMode, SaysWhereToLookWhereNoSettingsPageCanBeOpened) {
  Program program;
  program.machine.scheduler.setSwitchedOff(true);
  program.machine.loginItems.setStatus(Status::requiresApproval);
  program.machine.loginItems.setHasSettings(false);
  program.open();
  program.answer("Open Login Items");
  const auto shown = program.machine.alerts.shown();
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_EQ(shown.front().informativeText, program.machine.loginItems.advice());
  program.answer("OK");
  EXPECT_TRUE(program.machine.alerts.shown().empty());
  EXPECT_TRUE(program.delegate().awaitingLoginItemsFix());
}

TEST(WindowMode, TheAlertOfARefusedJobWaitsForItsReader) {
  Program program;
  program.machine.scheduler.setBootstrapFailure(5);
  program.open();
  program.machine.advance(60);
  ASSERT_EQ(program.machine.alerts.shown().size(), 1U) << "the launch itself is no return from the settings";
  program.answer("Open Login Items");
  program.machine.scheduler.setBootstrapFailure({});
  program.machine.application.leave();
  program.machine.application.comeBack();
  program.machine.settle();
  EXPECT_TRUE(program.isArmed());
}

TEST(WindowMode, AnotherCopyThatHasTheJobKeepsIt) {
  const std::string packaged = "/usr/lib/dormel/Dormel.app";
  const std::string byHand = "/Applications/Dormel.app";
  const auto isArmedFor = [](Program& program, const std::string& bundle) {
    return program.machine.files.read(PLIST).value_or("").find("<string>" + bundle + "/Contents/") != std::string::npos;
  };
  struct Row {
    std::string first;
    std::string second;
  };
  for (const Row& row : {Row{byHand, packaged}, Row{packaged, byHand}}) {
    Program program(row.first);
    program.machine.files.put(packaged + "/Contents/Info.plist",
                              *writeXmlPropertyList({PropertyListDictionary{{"DormelPackagePlace", {packaged}}}}));
    program.arm();
    program.place(row.second);
    program.machine.bundle.setPath(row.second);
    if (row.second == packaged) program.machine.bundle.setPackageRemoval("sudo apt remove dormel");
    program.open();
    EXPECT_EQ(
        effects(program).back(),
        "alert, informational: Another copy of Dormel does the locking / It is " + row.first +
            ". What you set here holds for it, too.\\n\\nTo have this copy lock instead, remove that one, then open "
            "this one again. / [OK]");
    program.answer("OK");
    program.delegate().finishOnboarding();
    EXPECT_TRUE(isArmedFor(program, row.first)) << "whatever is set anew";

    program.machine.files.remove(row.first + "/Contents/Linux/Dormel");
    program.delegate().finishOnboarding();
    EXPECT_TRUE(isArmedFor(program, row.second)) << "there is no other one any more";
  }
  Program program("/home/user/build/Dormel.app");  // where nothing locks
  program.arm();
  program.place(byHand);
  program.machine.bundle.setPath(byHand);
  program.machine.run([] { AgentManager::rearm(); });
  EXPECT_TRUE(isArmedFor(program, byHand));
}

TEST(WindowMode, FinishingTheOnboardingArmsTheSchedulerOrSaysThatItCouldNot) {
  for (const bool refused : {false, true}) {
    Program program;
    program.machine.defaults.putBoolean(defaultsKey::onboardingComplete, false);
    program.machine.scheduler.setBootstrapFailure(refused ? std::optional(5) : std::nullopt);
    program.open();
    program.machine.journal.clear();
    program.delegate().finishOnboarding();
    Lines expected{"default onboardingComplete = true",
                   "default use24HourClock = true",
                   "main window 2 made, 460x660 Dormel",
                   "main window 2 front",
                   "application activated",
                   "main window 1 closed",
                   WRITE,
                   BOOTOUT + " = 3"};
    const Lines ends =
        refused ? Lines{BOOTSTRAP + " = 5", REFUSED, "out: Onboarding complete but the scheduler could NOT be armed.",
                        RECOVERY}
                : Lines{BOOTSTRAP + " = 0", "out: Onboarding complete — scheduler armed (lock 22:00 → 6:00)."};
    expected.insert(expected.end(), ends.begin(), ends.end());
    EXPECT_EQ(effects(program), expected);
    EXPECT_EQ(program.delegate().awaitingLoginItemsFix(), refused);
  }
}

TEST(WindowMode, EndsWithItsWindowOrByItsMenuEvenWhileItRehearses) {
  const struct {
    const char* name;
    std::function<void(Program&)> end;
  } rows[] = {
      {"the window's button", [](Program& p) { p.machine.mainWindows.closeFront(); }},
      {"the window's shortcut", [](Program& p) { EXPECT_TRUE(p.machine.mainMenu.press("w")); }},
      {"quit", [](Program& p) { EXPECT_TRUE(p.machine.mainMenu.press("q")); }},
      {"the desktop", [](Program& p) { p.machine.run([&] { p.machine.application.terminate(); }); }},
  };
  for (const auto& row : rows) {
    for (const bool rehearses : {false, true}) {
      Program program;
      program.arm();
      program.machine.setWallClock("2026-11-16 23:00:00");  // the hours are nothing to it
      program.open();
      if (rehearses) program.delegate().testNow();
      program.machine.advance(3);
      EXPECT_EQ(program.machine.windows.cover(), rehearses ? 1 : 0);
      row.end(program);
      program.machine.settle();
      EXPECT_EQ(program.machine.exitStatus(), 0) << row.name;
      EXPECT_EQ(program.machine.windows.cover(), 0) << row.name;
      EXPECT_FALSE(program.machine.keyboard.isTaken()) << row.name;
    }
  }
}

TEST(WindowMode, ASecondStartBringsTheFirstToTheFront) {
  Program second;
  second.machine.process.setWindowSeatTaken(true);
  second.open();
  EXPECT_EQ(second.effects(), (Lines{"start", "the running program is told that it was opened again", "exit 0"}));

  Program first;
  first.arm();
  first.open();
  first.machine.advance(60);
  first.machine.journal.clear();
  first.machine.process.reopen();
  first.machine.settle();
  EXPECT_EQ(first.effects(), (Lines{"main window 1 front", "application activated"}));
}

TEST(WindowMode, EscapeEndsATestRunWhereverItArrives) {
  const struct {
    const char* name;
    Seconds at;  // after the first hold; the pill comes at 3.7
    bool otherInFront;
    bool ends;
  } rows[] = {
      {"by the tap that is being let go", 4, false, true},
      {"by the main window, beside the pill", 7, false, true},
      {"by the new tap", 12, true, true},
      {"in another application, beside the pill", 7, true, false},
  };
  for (const auto& row : rows) {
    Program program;
    SimMachine& machine = program.machine;
    program.arm();
    program.open();
    program.delegate().testNow();
    ScreenManager& session = *program.delegate().screenManager();
    machine.advance(3);
    machine.journal.clear();
    machine.screens.plug("DP-2", {1920, 0, 1280, 1024});
    machine.sleep(1);
    EXPECT_EQ(effects(program), (Lines{"screen DP-2 plugged", "sleeps", "wakes"})) << "nobody watches them now";
    pressAll(machine, *session.bypassController());
    machine.advance(5.05);
    releaseAll(machine);
    machine.advance(row.at);
    if (row.otherInFront) machine.windows.stealFocus();
    machine.keyboard.press(53);
    machine.settle();
    EXPECT_EQ(session.state() == SessionState::idle, row.ends) << row.name;
    EXPECT_EQ(machine.windows.visible().empty(), row.ends) << row.name;
    EXPECT_EQ(appTrail().back() == "═══ TEST CANCELLED ═══", row.ends) << row.name;
    EXPECT_EQ(machine.keyboard.foreignKeys().empty(), row.ends) << row.name;
    EXPECT_FALSE(machine.keyboard.isTaken()) << row.name;
  }
}

TEST(ScheduledRun, IsQuitOnlyWhenNothingIsLocked) {
  const struct {
    const char* name;
    Seconds after;
    bool trusted;
    SessionState state;
    bool ends;
  } rows[] = {
      {"fading in", 1, true, SessionState::blocked, false},
      {"locked", 10, true, SessionState::blocked, false},
      {"unlocked for five minutes", 120, true, SessionState::grace, false},
      {"no permission, nothing locked", 10, false, SessionState::idle, true},
  };
  for (const auto& row : rows) {
    Program program;
    SimMachine& machine = program.machine;
    machine.accessibility.setTrusted(row.trusted);
    machine.setWallClock("2026-11-16 23:00:00");
    program.open({"--scheduled"});
    ScreenManager& session = *program.delegate().screenManager();
    if (row.state == SessionState::grace) {
      pressAll(machine, *session.bypassController());
      machine.advance(31);
      releaseAll(machine);
    }
    machine.advance(row.after);
    ASSERT_EQ(session.state(), row.state) << row.name;
    machine.journal.clear();
    machine.run([&] { machine.application.terminate(); });
    if (!row.ends) {
      EXPECT_EQ(program.effects(), Lines{"out: Terminate blocked — still in blocking hours."}) << row.name;
      EXPECT_FALSE(machine.exitStatus()) << row.name;
      continue;
    }
    EXPECT_EQ(machine.exitStatus(), 0) << row.name;
    EXPECT_EQ(program.effects(), (Lines{"window 1 out", "presentation 0", "exit 0"})) << row.name;
  }
}

TEST(ScheduledRun, SaysWhatItFindsAndNeverOpensAWindow) {
  const std::string start = "start --scheduled";
  Program second;
  second.machine.process.setSessionTaken(true);
  second.open({"--scheduled"});
  second.machine.advance(10);
  EXPECT_EQ(second.effects(),
            (Lines{start, "out: Dormel is already watching this night in another process. Exiting.", "exit 0"}));

  Program successor;
  successor.machine.setWallClock("2026-11-16 22:00:00");
  successor.machine.process.setSessionTaken(true);  // by a run that is about to end, and will not be started again
  successor.open({"--scheduled"});
  successor.machine.advance(8);
  successor.machine.process.setSessionTaken(false);
  successor.machine.advance(1);
  EXPECT_EQ(successor.delegate().screenManager()->state(), SessionState::blocked);

  Program untrusted;
  untrusted.machine.accessibility.setTrusted(false);
  untrusted.open({"--scheduled"});
  EXPECT_EQ(effects(untrusted),
            (Lines{start, "activation policy accessory", "application activated",
                   "out: WARNING: Accessibility not granted — Dormel will NOT lock the screen tonight (P2.2r).",
                   "out: To fix: System Settings → Privacy & Security → Accessibility → add/enable Dormel",
                   "out: Outside blocking hours (22:00–6:00). Exiting.", "exit 0"}));

  Program locked;
  locked.machine.setWallClock("2026-11-16 22:00:00");
  locked.open({"--scheduled"});
  locked.machine.process.reopen();
  locked.machine.application.leave();
  locked.machine.application.comeBack();
  locked.machine.advance(60);
  EXPECT_EQ(locked.machine.output.lines(), Lines{"Accessibility permission OK."});
  EXPECT_TRUE(locked.machine.mainMenu.installed().empty());
  EXPECT_EQ(locked.machine.mainWindows.front(), nullptr);
}

}  // namespace
}  // namespace dormel
