// Removing the program: everything goes, or nothing.
#include <gtest/gtest.h>

#include <algorithm>

#include "core/AppSupport.h"
#include "tests/sim/Program.h"

namespace dormel {
namespace {

using Lines = Program::Lines;

const std::string ASKED =
    "alert, warning: Uninstall Dormel? / This removes Dormel from this computer completely: the nightly lock, the "
    "application, and everything it saved, settings and records included. / [Uninstall] [Cancel]";
const std::string DONE = "alert, informational: Dormel uninstalled / Dormel has been removed from your Mac. / [OK]";

class UninstallTest : public testing::Test {
 protected:
  /// An opened program with settings, records, logs and a job.
  static void prepare(Program& program) {
    program.arm();
    program.machine.files.put(AppSupport::url("nights.json"), "[]");
    program.machine.files.put(Config::unlockLogPath(), "unlocked\n");
    program.open();
    program.machine.advance(60);
    program.machine.journal.clear();
  }
  static Lines removal(const std::string& bundle) {
    return {"alert answered: Uninstall",
            "default debugLoggingEnabled = false",
            BOOTOUT + " = 0",
            "remove ~/Library/LaunchAgents/" + std::string(BUNDLE_IDENTIFIER) + ".plist",
            "defaults removed",
            "remove ~/Library/Application Support/" + std::string(BUNDLE_IDENTIFIER),
            "remove ~/Library/Logs/Dormel",
            bundle,
            "updates forgotten",
            "forgotten by the desktop",
            DONE};
  }
};

TEST_F(UninstallTest, EveryWayItGoes) {
  const std::string quoted = R"(rm -rf '/Applications/Night'\''s Dormel.app')";
  const Lines plain = removal("remove /Applications/Dormel.app");
  const auto notOurs = [](Program& p) { p.machine.files.chmod("/Applications", 0555); };
  const auto at = [](const char* hour, bool enabled) {
    return [=](Program& p) {
      p.machine.setWallClock(std::string("2026-11-16 ") + hour);
      p.machine.defaults.putBoolean(defaultsKey::blockingEnabled, enabled);
    };
  };
  const struct {
    const char* name;
    const char* bundle;
    std::function<void(Program&)> world;
    const char* answer;
    Lines effects;
  } rows[] = {
      {"by day", "/Applications/Dormel.app", [](Program&) {}, "Uninstall", plain},
      {"thought better of it", "/Applications/Dormel.app", [](Program&) {}, "Cancel", {"alert answered: Cancel"}},
      {"locked in", "/Applications/Dormel.app", at("22:00:00", true), "Uninstall", {"alert answered: Uninstall"}},
      {"in the hours, lock off", "/Applications/Dormel.app", at("22:00:00", false), "Uninstall", plain},
      {"not ours to delete", "/Applications/Night's Dormel.app", notOurs, "Uninstall",
       removal("administrator: " + quoted)},
      {"not ours, and refused", "/Applications/Night's Dormel.app",
       [=](Program& p) {
         notOurs(p);
         p.machine.workspace.setAdministratorAnswer(AuthorizationError{-128, "User canceled."});
       },
       "Uninstall", removal("administrator refuses: " + quoted)},
  };
  for (const auto& row : rows) {
    Program program(row.bundle);
    prepare(program);
    program.delegate().confirmUninstall();
    EXPECT_EQ(program.effects(), Lines{ASKED}) << row.name;
    row.world(program);  // while the question stands
    program.answer(row.answer);
    EXPECT_EQ(program.effects(), row.effects) << row.name;
    if (row.effects.back() != DONE) {
      program.machine.advance(60);
      EXPECT_FALSE(program.machine.exitStatus()) << row.name;
      EXPECT_TRUE(program.isArmed()) << row.name;
      continue;
    }
    program.answer("OK");
    EXPECT_EQ(program.effects(), (Lines{"alert answered: OK", "exit 0"})) << row.name;
    program.machine.advanceTo("2026-11-17 23:00:00");
    EXPECT_TRUE(program.effects().empty()) << row.name << ": something of it still runs";
  }
}

TEST_F(UninstallTest, APackageIsTheSystemsToRemove) {
  const std::string bundle = "/usr/lib/dormel/Dormel.app";
  Program program(bundle);
  program.machine.bundle.setPackageRemoval("sudo apt remove dormel");
  prepare(program);
  program.delegate().confirmUninstall();
  EXPECT_EQ(program.effects(),
            Lines{"alert, warning: Uninstall Dormel? / This removes the nightly lock and everything that Dormel saved "
                  "for you, settings and records included. The application itself stays: it belongs to your system, "
                  "which removes it. / [Uninstall] [Cancel]"});
  program.answer("Uninstall");
  Lines expected = removal("");
  expected.erase(std::find(expected.begin(), expected.end(), ""));
  expected.back() =
      "alert, informational: Dormel uninstalled / The nightly lock and everything that Dormel saved for you have been "
      "removed.\\n\\nTo remove the application, too, type in a terminal: sudo apt remove dormel / [OK]";
  EXPECT_EQ(program.effects(), expected);
  EXPECT_TRUE(program.machine.files.exists(bundle + "/Contents/Linux/Dormel"));
}

TEST_F(UninstallTest, WhatCannotBeRemovedStopsNothing) {
  Program program;
  prepare(program);
  program.machine.files.chmod("/home/user/Library", 0555);
  program.machine.files.chmod("/home/user/Library/Logs", 0555);
  program.machine.files.chmod("/home/user/Library/Application Support", 0555);
  program.machine.files.chmod("/home/user/Library/LaunchAgents", 0555);
  program.machine.defaults.setWritable(false);
  program.delegate().confirmUninstall();
  program.answer("Uninstall");
  EXPECT_EQ(program.machine.alerts.shown().back().message, "Dormel uninstalled");
  EXPECT_FALSE(program.isArmed());
  EXPECT_FALSE(program.machine.files.exists("/Applications/Dormel.app"));
  program.answer("OK");
  EXPECT_EQ(program.machine.exitStatus(), 0);
}

TEST_F(UninstallTest, AJobThatWaitedForItsSwitchDoesNotComeBack) {
  Program program;
  program.machine.loginItems.setStatus(LoginItemStatus::requiresApproval);
  program.open();
  program.answer("Not Now");
  program.delegate().confirmUninstall();
  program.answer("Uninstall");
  program.machine.loginItems.setStatus(LoginItemStatus::notFound);  // its file is gone
  program.machine.application.leave();
  program.machine.application.comeBack();
  program.machine.settle();
  EXPECT_FALSE(program.isArmed());
  EXPECT_FALSE(program.machine.files.exists("/home/user/Library/Logs/Dormel"));
}

}  // namespace
}  // namespace dormel
