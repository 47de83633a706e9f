// The scheduler's job: what its file says, how it is loaded, and what is said when that fails.
#include <gtest/gtest.h>

#include "tests/sim/Program.h"

namespace dormel {
namespace {

using Lines = Program::Lines;

const std::string WRITE = "write ~/Library/LaunchAgents/" + std::string(BUNDLE_IDENTIFIER) + ".plist";

class AgentManagerTest : public testing::Test {
 protected:
  AgentManagerTest() {
    machine.defaults.putBoolean(defaultsKey::debugLoggingEnabled, true);
    machine.defaults.putInteger(defaultsKey::blockStartHour, 21);
    cliArgs = {"/usr/local/bin/dormel"};
  }

  Lines effects() {
    Lines lines;
    for (const std::string& line : machine.journal.lines()) {
      if (line.find("mkdir ") == std::string::npos) lines.push_back(line.substr(sizeof "21:00:00.000 " - 1));
    }
    machine.journal.clear();
    return lines;
  }

  SimMachine machine;
};

TEST_F(AgentManagerTest, ItsFileReadsBackAsTheEightKeys) {
  EXPECT_TRUE(AgentManager::install());
  EXPECT_EQ(AgentManager::plistPath(), PLIST);
  EXPECT_EQ(machine.files.content(PLIST).substr(0, 38), R"(<?xml version="1.0" encoding="UTF-8"?>)");
  const auto read = readXmlPropertyList(machine.files.content(PLIST));
  ASSERT_TRUE(read);
  const auto text = [](const char* value) { return PropertyListValue{std::string(value)}; };
  const char* const log = "/home/user/Library/Logs/Dormel/dormel.log";
  const PropertyListDictionary expected{
      {"Label", text(BUNDLE_IDENTIFIER)},
      {"ProgramArguments",
       {PropertyListArray{text("/Applications/Dormel.app/Contents/Linux/Dormel"), text("--scheduled")}}},
      {"StartCalendarInterval", {PropertyListDictionary{{"Hour", {std::int64_t{21}}}, {"Minute", {std::int64_t{0}}}}}},
      {"RunAtLoad", {true}},
      {"KeepAlive", {PropertyListDictionary{{"SuccessfulExit", {false}}}}},
      {"StandardOutPath", text(log)},
      {"StandardErrorPath", text(log)},
      {"AssociatedBundleIdentifiers", {PropertyListArray{text(BUNDLE_IDENTIFIER)}}},
  };
  EXPECT_EQ(*read, PropertyListValue{expected});
  EXPECT_TRUE(machine.files.exists("/home/user/Library/Logs/Dormel")) << "the scheduler could not create the log";
}

TEST_F(AgentManagerTest, TheWholeLifeOfAJob) {
  EXPECT_FALSE(AgentManager::isLoaded());
  EXPECT_TRUE(AgentManager::install());
  EXPECT_TRUE(AgentManager::isLoaded());
  machine.defaults.putInteger(defaultsKey::blockStartHour, 1);
  EXPECT_TRUE(AgentManager::install());
  EXPECT_NE(machine.files.content(PLIST).find("<integer>1</integer>"), std::string::npos);
  EXPECT_TRUE(AgentManager::reload());
  EXPECT_TRUE(AgentManager::uninstall());
  EXPECT_FALSE(machine.files.exists(PLIST));
  EXPECT_FALSE(AgentManager::isLoaded());
  EXPECT_TRUE(AgentManager::uninstall());
  EXPECT_EQ(effects(),
            (Lines{PRINT + " = 113",    //
                   WRITE,               //
                   BOOTOUT + " = 3",    //
                   BOOTSTRAP + " = 0",  //
                   PRINT + " = 0",      //
                   WRITE,               // the hour changed
                   BOOTOUT + " = 0",    //
                   BOOTSTRAP + " = 0",  //
                   BOOTOUT + " = 0",    // reloaded
                   BOOTSTRAP + " = 0",  //
                   BOOTOUT + " = 0",    // uninstalled
                   "remove ~/Library/LaunchAgents/" + std::string(BUNDLE_IDENTIFIER) + ".plist",
                   PRINT + " = 113",     //
                   BOOTOUT + " = 3"}));  // and once more
}

TEST_F(AgentManagerTest, EachFailureIsOneLineAndStopsThere) {
  const auto bootstrapFailed = [](const char* status) {
    return std::string("out: AgentManager: bootstrap FAILED (exit ") + status +
           ") — agent NOT loaded, Dormel will not fire tonight";
  };
  const struct {
    const char* name;
    std::function<void(SimMachine&)> world;
    Lines effects;
    const char* trail;
  } rows[] = {
      {"the scheduler refuses",
       [](SimMachine& m) { m.scheduler.setBootstrapFailure(5); },
       {WRITE, BOOTOUT + " = 3", BOOTSTRAP + " = 5", bootstrapFailed("5")},
       "agent bootstrap FAILED exit=5"},
      {"the user switched it off",
       [](SimMachine& m) { m.scheduler.setSwitchedOff(true); },
       {WRITE, BOOTOUT + " = 3", BOOTSTRAP + " = 125", bootstrapFailed("125")},
       "agent bootstrap FAILED exit=125"},
      {"there is no scheduler",
       [](SimMachine& m) { m.childProcesses.install("/bin/launchctl", {}); },
       {WRITE, BOOTOUT + " = -1", BOOTSTRAP + " = -1", bootstrapFailed("-1")},
       "agent bootstrap FAILED exit=-1"},
      {"the folder is not ours",
       [](SimMachine& m) {
         m.files.putDirectory("/home/user/Library/LaunchAgents");
         m.files.chmod("/home/user/Library/LaunchAgents", 0555);
       },
       {WRITE + ": Permission denied", "out: AgentManager: failed to write plist: Permission denied"},
       ""},
      {"the folder cannot be made",
       [](SimMachine& m) { m.files.put("/home/user/Library", "a file"); },
       {WRITE + ": No such file or directory", "out: AgentManager: failed to write plist: No such file or directory"},
       ""},
      {"the path is no text",
       [](SimMachine& m) { m.bundle.setPath("/Applications/\xff.app"); },
       {"out: AgentManager: failed to serialise plist"},
       ""},
  };
  for (const auto& row : rows) {
    SimMachine own;
    own.defaults.putBoolean(defaultsKey::debugLoggingEnabled, true);
    row.world(own);
    EXPECT_FALSE(AgentManager::install()) << row.name;
    Lines lines;
    for (const std::string& line : own.journal.lines()) {
      if (line.find("mkdir ") == std::string::npos) lines.push_back(line.substr(sizeof "21:00:00.000 " - 1));
    }
    EXPECT_EQ(lines, row.effects) << row.name;
    const Lines trail = Program::trail();
    EXPECT_EQ(trail, *row.trail == '\0' ? Lines{} : Lines{row.trail}) << row.name;
    EXPECT_EQ(own.files.exists(PLIST), *row.trail != '\0') << row.name << ": what is left for a later reload";
  }
}

}  // namespace
}  // namespace dormel
