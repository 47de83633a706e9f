// The simulated machine itself, where the other tests lean on it most.
#include <gtest/gtest.h>

#include "platform/sim/SimMachine.h"

namespace dormel {
namespace {

using Lines = std::vector<std::string>;

TEST(Machine, OrdersByTimeAndThenByAsking) {
  SimMachine machine;
  std::string order;
  const auto add = [&](char c) { return [&order, c] { order += c; }; };
  const Timer late = Timer::once(2, add('f'));
  const Timer every = Timer::repeating(1, add('.'));
  machine.runLoop.asyncAfter(1, add('c'));
  machine.runLoop.async([&] {
    order += 'a';
    machine.runLoop.async(add('b'));
  });
  EXPECT_EQ(order, "") << "never inside the call";
  machine.advance(2);
  EXPECT_EQ(order, "ab.cf.");
}

TEST(Machine, ACancelledTimerDoesNotTickEvenWhenDue) {
  SimMachine machine;
  int ticks = 0;
  Timer second;
  Timer first = Timer::once(1, [&] { second.invalidate(); });
  second = Timer::once(1, [&] { ++ticks; });
  Timer own;
  own = Timer::repeating(1, [&, payload = std::make_shared<int>(1)] {
    own.invalidate();  // the tick itself goes on undisturbed
    ticks += 10 * *payload;
  });
  machine.advance(5);
  EXPECT_EQ(ticks, 10);
  const Timer reusesTheSlot = Timer::once(1, [&] { ticks += 100; });
  first.invalidate();  // ran out long ago
  second.invalidate();
  machine.advance(1);
  EXPECT_EQ(ticks, 110);
}

TEST(Machine, AStalledMainThreadMissesTicksThatOthersDoNot) {
  SimMachine machine;
  int main = 0;
  int background = 0;
  const Timer timer = Timer::repeating(1, [&] { ++main; });
  const auto ticker = machine.queues.makeBackgroundTimer(1, 1, [&] {
    EXPECT_FALSE(machine.runLoop.isMainThread());
    ++background;
  });
  machine.advance(2);
  machine.stallMain(5.5);
  machine.advance(5.5);
  EXPECT_EQ(background, 7);
  EXPECT_EQ(main, 3) << "one late tick when it comes to";
  machine.advance(1);
  EXPECT_EQ(main, 4) << "and then on the beat again";
}

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

TEST(Machine, ADeadDiskHoldsAnExitUpForTwoSecondsAtMost) {
  SimMachine machine;
  machine.timeline.setSerialQueuesHang(true);
  const auto queue = machine.queues.makeSerial("log");
  queue->async([&] { machine.files.write("/home/user/record", "r", {}); });
  EXPECT_FALSE(machine.run([&] { machine.process.exit(0); }));
  EXPECT_EQ(machine.journal.lines(), Lines{"21:00:02.000 exit 0"});
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

TEST(Machine, FilesKnowPermissions) {
  SimMachine machine;
  SimFiles& files = machine.files;
  EXPECT_FALSE(files.createDirectories("/home/user/a/b", 0777));
  EXPECT_EQ(files.mode("/home/user/a"), 0755U);
  EXPECT_FALSE(files.write("/home/user/a/b/f", "one", 0600));
  EXPECT_EQ(files.write("/home/user/none/f", "x", {})->message, "No such file or directory");
  files.chmod("/home/user/a/b", 0500);
  EXPECT_TRUE(files.write("/home/user/a/b/g", "x", {}));
  EXPECT_FALSE(files.write("/home/user/a/b/f", "two", {}));
  EXPECT_TRUE(files.rename("/home/user/a/b/f", "/home/user/f"));
  files.chmod("/home/user/a", 0600);
  EXPECT_FALSE(files.exists("/home/user/a/b/f"));
  EXPECT_FALSE(files.read("/home/user/a/b/f"));
  files.chmod("/home/user/a", 0700);
  EXPECT_FALSE(files.append("/home/user/a/b/none", "x"));
  EXPECT_TRUE(files.append("/home/user/a/b/f", "!"));
  EXPECT_EQ(files.read("/home/user/a/b/f"), "two!");
  files.chmod("/home/user/a/b", 0700);
  EXPECT_FALSE(files.remove("/home/user/a"));
  EXPECT_TRUE(files.names("/home/user").empty());
}

}  // namespace
}  // namespace dormel
