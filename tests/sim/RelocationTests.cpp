// Where the program may run from, and how it gets there.
#include <gtest/gtest.h>

#include "app/AppInstaller.h"
#include "tests/sim/Program.h"

namespace dormel {
namespace {

using Lines = Program::Lines;

const std::string SHORT = "Dormel needs to be in your Applications folder to work properly.";
const std::string FROM_IMAGE =
    "Dormel is running from a disk image. It needs to be in your Applications folder to work properly.\\n\\n"
    "After moving, you can eject the disk image.";

std::string offer(const std::string& why) {
  return "alert, informational: Move Dormel to Applications / " + why + " / [Move to Applications] [Quit]";
}

std::string failed(const std::string& why) { return "alert, critical: Installation Error / " + why + " / [OK]"; }

std::string relaunch(const std::string& quoted, const std::string& tool = "/usr/bin/open") {
  return "left running: /bin/sh -c (while /bin/kill -0 4711 >/dev/null 2>&1; do /bin/sleep 0.1; done; " + tool + " " +
         quoted + ") &";
}

TEST(Relocation, IsOfferedEverywhereButInAnApplicationsFolderItself) {
  const struct {
    const char* bundle;
    std::string why;  // empty: stays
  } rows[] = {
      {"/Applications/Dormel.app", ""},
      {"/home/user/Applications/Dormel.app", ""},
      {"/home/user/Applications/../Applications/./Dormel.app", ""},
      {"/opt/linked/Dormel.app", ""},
      {"/Applications/Tools/Dormel.app", SHORT},
      {"/ApplicationsOfMine/Dormel.app", SHORT},
      {"/home/user/Downloads/Dormel.app", SHORT},
      {"/Volumes/Stick/Dormel.app", SHORT},
      {"/Volumes/Dormel/Dormel.app", FROM_IMAGE},
  };
  for (const auto& row : rows) {
    Program program(row.bundle);
    program.machine.workspace.link("/Applications", "/opt/linked");
    program.machine.workspace.mountImage("/Volumes/Dormel");
    program.open();
    program.machine.advance(0.399);
    EXPECT_TRUE(program.machine.alerts.shown().empty()) << row.bundle << ": not in front yet";
    program.machine.advance(0.001);
    if (row.why.empty()) {
      EXPECT_NE(program.machine.mainWindows.front(), nullptr) << row.bundle;
      continue;
    }
    EXPECT_EQ(program.machine.journal.lines(),
              (Lines{"12:00:00.000 start", "12:00:00.000 activation policy regular",
                     "12:00:00.300 application activated", "12:00:00.400 " + offer(row.why)}))
        << row.bundle;
  }
}

TEST(Relocation, APackagedCopyStaysAndIsListedAlready) {
  Program program("/usr/lib/dormel/Dormel.app");
  program.machine.bundle.setPackageRemoval("sudo apt remove dormel");
  program.machine.workspace.forgetApplication();
  program.open();
  EXPECT_NE(program.machine.mainWindows.front(), nullptr);
  EXPECT_TRUE(program.machine.alerts.shown().empty());
  EXPECT_TRUE(program.isArmed());
  EXPECT_EQ(program.machine.workspace.listed(), "");
}

TEST(Relocation, AScheduledRunFromTheWrongPlaceEndsAtOnceAndTouchesNothing) {
  Program program("/home/user/Downloads/Dormel.app");
  program.open({"--scheduled"});
  EXPECT_EQ(program.effects(),
            (Lines{"start --scheduled",
                   "out: ERROR: Dormel launched --scheduled from /home/user/Downloads/Dormel.app, not /Applications.",
                   "exit 0"}));
}

TEST(Relocation, EveryWayItGoes) {
  const std::string from = "/home/user/Downloads/Dormel.app";
  const std::string to = "/Applications/Dormel.app";
  const std::string strip = "run /usr/bin/xattr -d -r com.apple.quarantine " + to + " = 0";
  const std::string asRoot = AppInstaller::replaceCommand(from, to);
  const Lines moved{"copy to " + to, strip, relaunch("'" + to + "'"), "exit 0"};
  const auto occupied = [to](Program& p) { p.machine.files.put(to + "/old", "old"); };

  const struct {
    const char* name;
    std::function<void(Program&)> world;
    Lines effects;
    int status = 0;
  } rows[] = {
      {"free", [](Program&) {}, moved},
      {"an old copy, not running",
       occupied,
       {"trash " + to, "copy to " + to, strip, relaunch("'" + to + "'"), "exit 0"}},
      {"an old copy that runs",
       [=](Program& p) {
         occupied(p);
         p.machine.workspace.link("/srv/apps", "/Applications");
         p.machine.workspace.setRunningBundles({"/usr/bin/other", "/srv/apps/../apps/Dormel.app/"});
       },
       {"open " + to, "exit 0"}},
      {"a copy runs from there that is no longer there",
       [=](Program& p) { p.machine.workspace.setRunningBundles({to}); }, moved},
      {"the folder is not ours",
       [](Program& p) { p.machine.files.chmod("/Applications", 0555); },
       {"administrator: " + asRoot, strip, relaunch("'" + to + "'"), "exit 0"}},
      {"the old copy is not ours",
       [=](Program& p) {
         occupied(p);
         p.machine.files.chmod(to, 0555);
       },
       {"administrator: " + asRoot, strip, relaunch("'" + to + "'"), "exit 0"}},
      {"the password is refused",
       [](Program& p) {
         p.machine.files.chmod("/Applications", 0555);
         p.machine.workspace.setAdministratorAnswer(AuthorizationError{-128, "User canceled."});
       },
       {"administrator refuses: " + asRoot, failed("Could not move Dormel to Applications: User canceled.")},
       1},
      {"the administrator's shell fails without a word",
       [](Program& p) {
         p.machine.files.chmod("/Applications", 0555);
         p.machine.workspace.setAdministratorAnswer(AuthorizationError{1, {}});
       },
       {"administrator refuses: " + asRoot, failed("Could not move Dormel to Applications: Install failed")},
       1},
      {"the disk is full",
       [](Program& p) { p.machine.files.setFreeBytes(3); },
       {"copy to " + to + ": No space left on device",
        failed("Could not move Dormel to Applications: No space left on device")},
       1},
      {"the disk is full, and an old copy stands there",
       [=](Program& p) {
         occupied(p);
         p.machine.files.setFreeBytes(3);
       },
       {"copy to " + to + ": No space left on device",
        failed("Could not move Dormel to Applications: No space left on device")},
       1},
      {"the same bundle by another way",
       [=](Program& p) {
         p.machine.files.put(to + "/Contents/Linux/Dormel", "program");
         p.machine.workspace.mountAgain("/home/user/Downloads", "/Applications");
       },
       {strip, relaunch("'" + to + "'"), "exit 0"}},
      {"there is no such folder",
       [](Program& p) { p.machine.workspace.setLocalApplicationsDirectory({}); },
       {failed("Could not find the Applications folder.")},
       1},
      {"the platform brings the tool along",
       [=](Program& p) { p.machine.childProcesses.standIn("/usr/bin/open", from + "/Contents/Helpers/open"); },
       {"copy to " + to, strip, relaunch("'" + to + "'", "'" + to + "/Contents/Helpers/open'"), "exit 0"}},
      {"there is no such tool",
       [](Program& p) {
         p.machine.childProcesses.install("/usr/bin/xattr", {});
         p.machine.childProcesses.setStartsFail(true);
       },
       {"copy to " + to, "run /usr/bin/xattr -d -r com.apple.quarantine " + to + " = -1",
        relaunch("'" + to + "'") + " (failed)", "exit 0"}},
  };
  for (const auto& row : rows) {
    Program program(from);
    program.machine.defaults.putBoolean(defaultsKey::onboardingComplete, false);
    row.world(program);
    program.open();
    program.machine.advance(0.4);
    program.machine.journal.clear();
    program.answer("Move to Applications");
    Lines expected = row.effects;
    expected.insert(expected.begin(), "alert answered: Move to Applications");
    EXPECT_EQ(program.effects(), expected) << row.name;
    if (row.status != 0) {
      EXPECT_FALSE(program.machine.exitStatus()) << row.name << ": it ended before it was read";
      program.answer("OK");
    }
    EXPECT_EQ(program.machine.exitStatus(), row.status) << row.name;
    EXPECT_TRUE(program.machine.files.exists(from + "/Contents/Linux/Dormel")) << row.name << ": the source is gone";
  }
}

TEST(Relocation, ABundleThatLostItsNameIsRefused) {
  Program program("/home/user/Downloads/Dormel/Contents/Linux");
  program.open();
  program.machine.advance(0.4);
  EXPECT_EQ(program.machine.journal.lines().back(),
            "12:00:00.400 " + failed("Dormel's folder needs a name that ends in \".app\". Rename it to "
                                     "\"Dormel.app\" and open it again."));
  program.answer("OK");
  EXPECT_EQ(program.machine.exitStatus(), 1);
}

TEST(Relocation, TheJobNamesTheCopyThatStaysSoThatTheVeryNextRunLocks) {
  Program program("/Volumes/Dormel/Night's Dormel.app");
  const std::string to = "/Applications/Night's Dormel.app";
  program.machine.workspace.mountImage("/Volumes/Dormel");
  program.arm();  // as an earlier copy, long thrown away, left it
  program.open();
  program.machine.advance(0.4);
  program.machine.journal.clear();
  program.answer("Move to Applications");
  const Lines effects = program.effects();
  ASSERT_GT(effects.size(), 7U);
  EXPECT_EQ(Lines(effects.begin(), effects.begin() + 8),
            (Lines{"alert answered: Move to Applications", "copy to " + to,
                   "run /usr/bin/xattr -d -r com.apple.quarantine " + to + " = 0",
                   "write ~/Library/LaunchAgents/" + std::string(BUNDLE_IDENTIFIER) + ".plist", BOOTOUT + " = 0",
                   BOOTSTRAP + " = 0", relaunch(R"('/Applications/Night'\''s Dormel.app')"), "exit 0"}));

  program.machine.files.erase("/Volumes/Dormel");  // ejected
  program.open();                                  // what waited for the old one does this
  EXPECT_EQ(program.machine.workspace.listed(), to) << "the desktop's menus still open the old copy";
  EXPECT_TRUE(program.machine.alerts.shown().empty());
  program.machine.mainWindows.closeFront();
  program.machine.advanceTo("2026-11-16 22:00:03");
  ASSERT_TRUE(program.machine.timeline.processRuns());
  ASSERT_EQ(program.machine.bundle.path(), to);
  EXPECT_EQ(program.delegate().screenManager()->state(), SessionState::blocked);
  EXPECT_EQ(program.machine.windows.cover(), 1);
}

}  // namespace
}  // namespace dormel
