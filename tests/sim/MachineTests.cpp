// The simulated machine itself, where the other tests lean on it most.
#include <gtest/gtest.h>

#include "platform/sim/SimMachine.h"

namespace dormel {
namespace {

using Lines = std::vector<std::string>;

TEST(Machine, ExitLetsTheSerialQueuesRunDryAndThenNothingMore) {
  SimMachine machine;
  Lines ran;
  const auto queue = machine.queues.makeSerial("log");
  const Timer timer = Timer::repeating(1, [&] { ran.push_back("tick"); });
  const Timer last = Timer::once(2.5, [&] {
    queue->async([&] {
      EXPECT_FALSE(machine.runLoop.isMainThread());
      machine.files.write("/home/user/record", "r", {});
    });
    machine.runLoop.async([&] { ran.push_back("turn"); });
    machine.process.exit(0);
  });
  machine.advance(10);
  EXPECT_EQ(ran, (Lines{"tick", "tick"}));
  EXPECT_EQ(machine.journal.lines(), (Lines{"21:00:02.500 write ~/record", "21:00:02.500 exit 0"}));
  EXPECT_EQ(machine.exitStatus(), 0);
}

TEST(Machine, TheSchedulerBringsTheProgramBackUntilItEndsWithZero) {
  SimMachine::Options options;
  options.processRuns = false;
  SimMachine machine(options);
  const std::string plist = "/home/user/Library/LaunchAgents/job.plist";
  const PropertyListDictionary job{
      {"Label", {std::string("job")}},
      {"ProgramArguments", {PropertyListArray{{std::string("/Applications/x")}, {std::string("--scheduled")}}}},
      {"RunAtLoad", {true}},
      {"KeepAlive", {PropertyListDictionary{{"SuccessfulExit", {false}}}}},
      {"StartCalendarInterval", {PropertyListDictionary{{"Hour", {std::int64_t{22}}}, {"Minute", {std::int64_t{0}}}}}},
      {"StandardOutPath", {std::string("/home/user/job.log")}}};
  const auto launchctl = [&](const std::vector<std::string>& arguments) {
    return machine.childProcesses.run("/bin/launchctl", arguments);
  };
  EXPECT_EQ(launchctl({"bootstrap", "gui/1000", plist}), 5);
  machine.files.put(plist, writeXmlPropertyList({job}).value());

  int status = 1;
  machine.setProgram([&](const std::vector<std::string>& arguments) {
    EXPECT_EQ(arguments, Lines{"--scheduled"});
    machine.output.print("hello");
    machine.runLoop.asyncAfter(10, [&] { machine.process.exit(status); });
    return nullptr;
  });
  EXPECT_EQ(launchctl({"bootstrap", "gui/1000", plist}), 0);
  EXPECT_EQ(launchctl({"bootstrap", "gui/1000", plist}), 37);
  EXPECT_EQ(launchctl({"print", "gui/1000/job"}), 0);
  machine.advance(10.5);  // ended with 1
  status = 0;
  machine.advance(5);
  machine.process.kill();
  machine.advance(12);
  machine.advanceTo("2026-11-16 22:00:00");
  machine.advance(20);
  machine.sleep(23.5 * 3600);  // 21:30 the next day
  machine.sleep(3600);
  EXPECT_EQ(launchctl({"bootout", "gui/1000/job"}), 0);
  EXPECT_EQ(launchctl({"bootout", "gui/1000/job"}), 3);
  EXPECT_EQ(launchctl({"print", "gui/1000/job"}), 113);
  machine.settle();
  std::string ends;
  for (const auto& ending : machine.endings()) ends += std::to_string(ending.status) + " ";
  EXPECT_EQ(ends, "1 137 0 0 143 ") << "the last one was started after sleep and ended by the unloading";
  EXPECT_EQ(machine.files.content("/home/user/job.log"), "hello\nhello\nhello\nhello\nhello\n");
}

}  // namespace
}  // namespace dormel
