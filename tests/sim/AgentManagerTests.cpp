#include "app/AgentManager.h"

#include <gtest/gtest.h>

#include "core/Config.h"
#include "core/Constants.h"
#include "platform/sim/SimMachine.h"

namespace dormel {
namespace {

const std::string LABEL = BUNDLE_IDENTIFIER;
const std::string PLIST = "/home/user/Library/LaunchAgents/" + LABEL + ".plist";
TEST(AgentManager, WritesTheJobAndTakesItAway) {
  SimMachine machine;
  machine.defaults.putInteger(defaultsKey::blockStartHour, 21);
  EXPECT_TRUE(AgentManager::install());
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
  EXPECT_TRUE(AgentManager::install());
  EXPECT_NE(machine.files.content(PLIST).find("<integer>23</integer>"), std::string::npos);
  EXPECT_TRUE(AgentManager::uninstall());
  EXPECT_FALSE(AgentManager::isLoaded());
  EXPECT_FALSE(machine.files.exists(PLIST));
  EXPECT_TRUE(AgentManager::uninstall()) << "it is gone already";
}

TEST(AgentManager, SaysWhatWentWrongAndLeavesALaterTrySomethingToLoad) {
  SimMachine machine;
  machine.scheduler.setBootstrapFailure(5);
  EXPECT_FALSE(AgentManager::install());
  EXPECT_TRUE(machine.files.exists(PLIST));

  machine.childProcesses.install("/bin/launchctl", {});
  EXPECT_FALSE(AgentManager::reload());
  EXPECT_EQ(machine.output.lines().back(),
            "AgentManager: bootstrap FAILED (exit -1) — agent NOT loaded, Dormel will not fire tonight");
  EXPECT_FALSE(AgentManager::isLoaded());

  const std::string before = machine.files.content(PLIST);
  machine.files.setFreeBytes(0);
  machine.journal.clear();
  EXPECT_FALSE(AgentManager::install());
  EXPECT_EQ(machine.output.lines().back(), "AgentManager: failed to write plist: No space left on device");
  EXPECT_EQ(machine.journal.text().find("run "), std::string::npos) << "what is loaded stays so";
  EXPECT_EQ(machine.files.content(PLIST), before);
  machine.files.setFreeBytes({});
  machine.bundle.setPath("/home/user/\xff.app");
  EXPECT_FALSE(AgentManager::install());
  EXPECT_EQ(machine.output.lines().back(), "AgentManager: failed to serialise plist");
}

}  // namespace
}  // namespace dormel
