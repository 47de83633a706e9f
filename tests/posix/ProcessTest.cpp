// Queues, children and the end of the process.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "platform/linux/posix/PosixChildProcesses.h"
#include "platform/linux/posix/PosixProcess.h"
#include "platform/linux/posix/PosixQueues.h"
#include "tests/posix/TemporaryHome.h"

namespace dormel {
namespace {

TEST(PosixChildProcesses, ReportsHowTheToolEnded) {
  posix::PosixChildProcesses children(posix::PosixChildProcesses::Tools{{"/bin/launchctl", "/bin/false"}});
  const struct {
    const char* tool;
    std::vector<std::string> arguments;
    std::int32_t status;
  } cases[] = {{"/bin/sh", {"-c", "exit 37"}, 37},
               {"/bin/sh", {"-c", "kill -9 $$"}, 137},
               {"/bin/sh", {"-c", "[ \"$1\" = \"a 'b' \\$c\" ]", "sh", "a 'b' $c"}, 0},
               {"/nowhere/at/all", {}, -1},
               {"/bin/launchctl", {}, 1}};
  for (const auto& example : cases) EXPECT_EQ(children.run(example.tool, example.arguments), example.status);
}

TEST(PosixQueues, RunsInOrderAndFinishesBeforeItGoes) {
  std::vector<int> order;
  {
    posix::PosixQueues queues;
    const auto queue = queues.makeSerial("com.example.order");
    for (int i = 0; i < 1000; ++i) queue->async([&order, i] { order.push_back(i); });
    EXPECT_TRUE(queues.drain(10));
    EXPECT_EQ(order.size(), 1000U);
    queue->async([&order] { order.push_back(1000); });
  }
  for (int i = 0; i <= 1000; ++i) ASSERT_EQ(order[static_cast<std::size_t>(i)], i);
}

TEST(PosixQueues, ATimerMayEndItselfFromItsOwnTick) {
  posix::PosixQueues queues;
  std::mutex mutex;
  std::condition_variable changed;
  int ticks = 0;
  std::unique_ptr<BackgroundTimer> timer;
  {
    const std::lock_guard lock(mutex);
    timer = queues.makeBackgroundTimer(0.001, 0.001, [&] {
      const std::lock_guard inTick(mutex);
      if (++ticks == 3) timer.reset();
      changed.notify_all();
    });
  }
  std::unique_lock lock(mutex);
  EXPECT_TRUE(changed.wait_for(lock, std::chrono::seconds(10), [&] { return ticks == 3; }));
  EXPECT_FALSE(timer);
}

/// Runs `body` in a child process and answers its exit status.
template <typename Body>
int statusOf(Body body) {
  const pid_t child = ::fork();
  if (child == 0) {
    body();
    ::_exit(99);
  }
  int status = -1;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(PosixProcess, ExitWaitsForTheRecordsButNotForEver) {
  const TemporaryHome home;
  const std::string path = home.path() + "/record";
  const posix::Seats seats{home.path() + "/session", home.path() + "/window"};
  const auto noWatch = [](int, const std::function<bool()>&) {};
  EXPECT_EQ(statusOf([&] {
              posix::PosixQueues queues;
              posix::PosixProcess process(queues, seats, noWatch);
              const auto queue = queues.makeSerial("com.example.records");
              queue->async([&] {
                ::usleep(50'000);
                put(path, "kept");
              });
              process.beforeExit([&] { put(path + "2", contents(path)); });
              process.exit(7);
            }),
            7);
  EXPECT_EQ(contents(path), "kept");
  EXPECT_EQ(contents(path + "2"), "kept") << "records first, then the rest";
}

TEST(PosixProcess, OneSessionAtATime) {
  const TemporaryHome home;
  posix::PosixQueues queues;
  const auto noWatch = [](int, const std::function<bool()>&) {};
  const posix::Seats seats{home.path() + "/session", home.path() + "/window"};
  const auto claimed = [&] {
    return statusOf([&] { ::_exit(posix::PosixProcess(queues, seats, noWatch).claimSession() ? 1 : 0); });
  };
  {
    posix::PosixProcess process(queues, seats, noWatch);
    EXPECT_TRUE(process.claimSession());
    EXPECT_EQ(claimed(), 0);
  }
  EXPECT_EQ(claimed(), 1) << "free again with its holder gone";
}

}  // namespace
}  // namespace dormel
