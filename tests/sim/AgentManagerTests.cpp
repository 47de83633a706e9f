#include "app/AgentManager.h"

#include <gtest/gtest.h>

#include "core/Config.h"
#include "core/Constants.h"
#include "core/DebugLog.h"
#include "platform/sim/SimMachine.h"

namespace dormel {
namespace {

const std::string LABEL = BUNDLE_IDENTIFIER;
const std::string PLIST = "/home/user/Library/LaunchAgents/" + LABEL + ".plist";
const std::string BOOTOUT = "run /bin/launchctl bootout gui/1000/" + LABEL + " = ";
const std::string BOOTSTRAP = "run /bin/launchctl bootstrap gui/1000 " + PLIST + " = ";

/// What the journal says about tools and printed lines, without the time of day.
std::vector<std::string> effects(SimMachine& machine) {
  std::vector<std::string> kept;
  for (const std::string& line : machine.journal.lines()) {
    const std::string effect = line.substr(line.find(' ') + 1);
    if (effect.starts_with("run ") || effect.starts_with("out: ")) kept.push_back(effect);
  }
  machine.journal.clear();
  return kept;
}

using Effects = std::vector<std::string>;

TEST(AgentManager, ArmsAndDisarmsTheJob) {
  SimMachine machine;
  machine.defaults.putInteger(defaultsKey::blockStartHour, 21);
  EXPECT_FALSE(AgentManager::isLoaded());
  EXPECT_EQ(effects(machine), Effects{"run /bin/launchctl print gui/1000/" + LABEL + " = 113"});
  EXPECT_TRUE(AgentManager::uninstall());
  EXPECT_EQ(effects(machine), Effects{BOOTOUT + "3"});

  EXPECT_TRUE(AgentManager::install());
  EXPECT_EQ(effects(machine), (Effects{BOOTOUT + "3", BOOTSTRAP + "0"}));
  EXPECT_TRUE(AgentManager::isLoaded());
  const std::string log = "/home/user/Library/Logs/Dormel/dormel.log";
  const auto text = [](const std::string& value) { return PropertyListValue{value}; };
  const PropertyListDictionary expected{
      {"Label", text(LABEL)},
      {"ProgramArguments", {PropertyListArray{text(*machine.bundle.executablePath()), text("--scheduled")}}},
      {"StartCalendarInterval", {PropertyListDictionary{{"Hour", {std::int64_t{21}}}, {"Minute", {std::int64_t{0}}}}}},
      {"RunAtLoad", {true}},
      {"KeepAlive", {PropertyListDictionary{{"SuccessfulExit", {false}}}}},
      {"StandardOutPath", text(log)},
      {"StandardErrorPath", text(log)},
      {"AssociatedBundleIdentifiers", {PropertyListArray{text(LABEL)}}}};
  EXPECT_EQ(readXmlPropertyList(machine.files.content(PLIST)), PropertyListValue{expected});
  EXPECT_TRUE(machine.files.exists("/home/user/Library/Logs/Dormel"));

  machine.defaults.putInteger(defaultsKey::blockStartHour, 23);
  effects(machine);
  EXPECT_TRUE(AgentManager::install());
  EXPECT_EQ(effects(machine), (Effects{BOOTOUT + "0", BOOTSTRAP + "0"}));
  EXPECT_NE(machine.files.content(PLIST).find("<integer>23</integer>"), std::string::npos);

  EXPECT_TRUE(AgentManager::uninstall());
  EXPECT_FALSE(AgentManager::isLoaded());
  EXPECT_FALSE(machine.files.exists(PLIST));
}

TEST(AgentManager, SaysWhatWentWrong) {
  SimMachine machine;
  DebugLog::shared().setEnabled(true);
  machine.childProcesses.install("/bin/launchctl", [](const std::vector<std::string>& arguments) {
    return arguments.front() == "bootstrap" ? 5 : 0;
  });
  effects(machine);
  EXPECT_FALSE(AgentManager::install());
  EXPECT_EQ(effects(machine),
            (Effects{BOOTOUT + "0", BOOTSTRAP + "5",
                     "out: AgentManager: bootstrap FAILED (exit 5) — agent NOT loaded, Dormel will not fire tonight"}));
  EXPECT_TRUE(DebugLog::shared().lines().back().ends_with("agent bootstrap FAILED exit=5"));
  EXPECT_TRUE(machine.files.exists(PLIST)) << "a later try has nothing to load";

  machine.childProcesses.install("/bin/launchctl", {});
  EXPECT_FALSE(AgentManager::reload());
  EXPECT_EQ(effects(machine).back(),
            "out: AgentManager: bootstrap FAILED (exit -1) — agent NOT loaded, Dormel will not fire tonight");
  EXPECT_FALSE(AgentManager::isLoaded());

  effects(machine);
  const std::string before = machine.files.content(PLIST);
  machine.files.setFreeBytes(0);
  EXPECT_FALSE(AgentManager::install());
  EXPECT_EQ(effects(machine), Effects{"out: AgentManager: failed to write plist: No space left on device"});
  EXPECT_EQ(machine.files.content(PLIST), before) << "the next login has nothing to load";
  machine.files.setFreeBytes({});
  machine.bundle.setPath("/home/user/\xff.app");
  EXPECT_FALSE(AgentManager::install());
  EXPECT_EQ(effects(machine), Effects{"out: AgentManager: failed to serialise plist"});
}

}  // namespace
}  // namespace dormel
