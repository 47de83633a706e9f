#include "core/DebugLog.h"

#include <gtest/gtest.h>

#include "platform/sim/SimMachine.h"

namespace dormel {
namespace {

const std::string FILE_PATH = "/home/user/Library/Logs/Dormel/debug.log";

TEST(DebugLog, RecordsOnlyWhileEnabledAndRemembersTheSwitch) {
  SimMachine machine;
  EXPECT_EQ(DebugLog::filePath(), FILE_PATH);
  DebugLog& log = DebugLog::shared();
  log.append("lost");
  machine.settle();
  EXPECT_TRUE(log.lines().empty());
  EXPECT_FALSE(machine.files.exists("/home/user/Library"));

  log.setEnabled(true);
  EXPECT_TRUE(DebugLog::create()->enabled()) << "the next process does not know";
  machine.advanceTo("2026-11-16 23:04:17");
  machine.advance(0.0526);
  log.append("self-heal");
  machine.settle();
  EXPECT_EQ(log.lines(), (std::deque<std::string>{"23:04:17.052  self-heal"}));
  EXPECT_EQ(machine.files.content(FILE_PATH), "23:04:17.052  self-heal\n");

  log.setEnabled(false);
  log.append("lost again");
  machine.settle();
  EXPECT_EQ(machine.files.content(FILE_PATH), "23:04:17.052  self-heal\n");
}

TEST(DebugLog, KeepsTheNewestLines) {
  SimMachine machine;
  const auto log = DebugLog::create();
  log->setEnabled(true);
  for (int i = 1; i <= 401; ++i) log->append(std::to_string(i));
  ASSERT_EQ(log->lines().size(), DebugLog::maxLines);
  EXPECT_TRUE(log->lines().front().ends_with("  2"));
  EXPECT_TRUE(log->lines().back().ends_with("  401"));
}

TEST(DebugLog, LinesFromOtherThreadsReachTheFileInCallOrderAndMemoryOnTheMainThread) {
  SimMachine machine;
  const auto log = DebugLog::create();
  log->setEnabled(true);
  int notifiedOffMain = 0;
  const Observation observation = log->observe([&] {
    if (!platform().runLoop.isMainThread()) ++notifiedOffMain;
  });
  const auto timer = machine.queues.makeBackgroundTimer(0, 100, [&] {
    log->append("background");
    log->append("background 2");
  });
  log->append("main 1");
  machine.stallMain(1);
  machine.settle();
  EXPECT_EQ(log->lines().size(), 1U) << "only the main thread touches the list";
  machine.advance(1);
  log->append("main 2");
  machine.settle();

  std::string file;
  for (const std::string& line : log->lines()) file += line + "\n";
  EXPECT_EQ(machine.files.content(FILE_PATH), file);
  EXPECT_EQ(file, "21:00:00.000  main 1\n21:00:00.000  background\n21:00:00.000  background 2\n21:00:01.000  main 2\n");
  EXPECT_EQ(notifiedOffMain, 0);
}

}  // namespace
}  // namespace dormel
