// Queues, paths and the end of the process.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "platform/linux/freedesktop/InstanceLockFiles.h"
#include "platform/linux/loop/EventLoop.h"
#include "platform/linux/posix/PosixProcess.h"
#include "platform/linux/posix/PosixQueues.h"
#include "tests/posix/Child.h"
#include "tests/posix/TemporaryHome.h"

namespace dormel {
namespace {

TEST(PosixQueues, RunsInOrderAndFinishesBeforeItGoes) {
  std::vector<int> order;
  {
    EventLoop loop;
    posix::PosixQueues queues{loop};
    const auto queue = queues.makeSerial("com.example.order");
    for (int i = 0; i < 1000; ++i) queue->async([&order, i] { order.push_back(i); });
    EXPECT_TRUE(queues.drain(10));
    EXPECT_EQ(order.size(), 1000U);
    queue->async([&order] { order.push_back(1000); });
  }
  for (int i = 0; i <= 1000; ++i) ASSERT_EQ(order[static_cast<std::size_t>(i)], i);
}

TEST(PosixQueues, AMachineWithoutAThreadLeftCostsNobodyTheProcess) {
  const TemporaryHome home;
  EXPECT_EQ(statusAsOrdinaryUser(home.path(),
                                 [] {
                                   rlimit before{};
                                   ::getrlimit(RLIMIT_NPROC, &before);
                                   const rlimit none{0, before.rlim_max};
                                   ::setrlimit(RLIMIT_NPROC, &none);
                                   EventLoop loop;
                                   posix::PosixQueues queues{loop};
                                   const auto queue = queues.makeSerial("com.example.poor");
                                   std::string done;
                                   queue->async([&] { done += "first "; });
                                   const auto timer = queues.makeBackgroundTimer(1, 1, [] {});
                                   const bool refused = !queues.drain(0);
                                   ::setrlimit(RLIMIT_NPROC, &before);
                                   queue->async([&] { done += "second"; });
                                   return refused && queues.drain(10) && done == "first second" ? 0 : 1;
                                 }),
            0);
}

TEST(PosixQueues, ATimerTicksOnTheMainThreadAndOffItWhileThatIsStuck) {
  EventLoop loop;
  posix::PosixQueues queues{loop};
  std::mutex mutex;
  std::condition_variable changed;
  int onMain = 0;
  int offMain = 0;
  std::unique_ptr<BackgroundTimer> timer = queues.makeBackgroundTimer(0.1, 0.1, [&] {
    const std::lock_guard lock(mutex);
    if (!loop.isMainThread()) {
      ++offMain;
      changed.notify_all();
    } else if (++onMain == 3) {
      loop.async([&] {
        std::unique_lock stuck(mutex);
        const int before = offMain;
        EXPECT_TRUE(changed.wait_for(stuck, std::chrono::seconds(10), [&] { return offMain >= before + 2; }));
      });
    } else if (onMain == 5) {
      timer.reset();
      loop.stop();
    }
  });
  loop.run();
  EXPECT_EQ(onMain, 5) << "it goes on where it was, and may end itself in its tick";
}

struct PosixProcess : testing::Test {
  static void noWatch(int /*descriptor*/, const std::function<bool()>& /*action*/) {}

  TemporaryHome home;
  EventLoop loop;
  posix::PosixQueues queues{loop};
  posix::InstanceLockPaths paths{home.path() + "/session", home.path() + "/window"};
};

TEST_F(PosixProcess, ExitWaitsForTheRecordsButNotForEver) {
  const std::string path = home.path() + "/record";
  EXPECT_EQ(statusOf([&] {
              EventLoop loop;
              posix::PosixQueues own{loop};
              posix::PosixProcess process(own, paths, noWatch);
              const auto queue = own.makeSerial("com.example.records");
              queue->async([&] {
                ::usleep(50'000);
                put(path, "kept");
              });
              process.beforeExit([&](const Process::ExitStatus& status) {
                put(path + "2", contents(path) + std::to_string(status()));
              });
              process.exit(7);
              return 99;
            }),
            7);
  EXPECT_EQ(contents(path), "kept");
  EXPECT_EQ(contents(path + "2"), "kept7") << "records first, then the rest";
}

TEST_F(PosixProcess, TheLastResortEndsAStoppedProcessUnlessItIsTakenBack) {
  const auto ends = [&](std::optional<Seconds> last) {
    return statusOf([&] {
      EventLoop loop;
      posix::PosixQueues own{loop};
      posix::PosixProcess process(own, paths, noWatch);
      process.endWithin(0.05);
      process.endWithin(last);
      if (last) ::raise(SIGSTOP);
      ::usleep(100'000);
      return 0;
    });
  };
  EXPECT_EQ(ends(0.01), 128 + SIGKILL);
  EXPECT_EQ(ends({}), 0);
}

TEST_F(PosixProcess, OneSessionAtATime) {
  const auto claimed = [&] {
    return statusOf([&] { return posix::PosixProcess(queues, paths, noWatch).acquireScheduledInstance(); });
  };
  {
    posix::PosixProcess process(queues, paths, noWatch);
    EXPECT_TRUE(process.acquireScheduledInstance());
    EXPECT_EQ(claimed(), 0);
  }
  EXPECT_EQ(claimed(), 1) << "free again with its holder gone";
}

TEST_F(PosixProcess, TwoUsersOfOneMachineDoNotMeet) {
  if (::geteuid() != 0) GTEST_SKIP() << "becomes another user";
  const auto claim = [&](auto&& then) {
    posix::PosixProcess process(queues, freedesktop::instanceLockFiles(), noWatch);
    return process.acquireScheduledInstance() && then();
  };
  // As after su: with the first user's variables. The second one has a seat all the same, and only one.
  const Variable runtime("XDG_RUNTIME_DIR", home.path());
  EXPECT_TRUE(claim([&] {
    const TemporaryHome second;
    return statusAsOrdinaryUser(second.path(), [&] {
             return claim([&] { return statusOf([&] { return claim([] { return true; }); }) == 0; });
           }) == 1;
  }));
}

TEST_F(PosixProcess, TheSecondWindowTellsTheFirst) {
  std::function<bool()> onReadable;
  const auto watch = [&](int, std::function<bool()> action) { onReadable = std::move(action); };
  int reopened = 0;
  const auto another = [&] {
    return statusOf([&] { return posix::PosixProcess(queues, paths, watch).acquireWindowInstance([] {}); });
  };
  const auto claim = [&](posix::PosixProcess& process) { return process.acquireWindowInstance([&] { ++reopened; }); };

  // Something else stands in the place: it locks nobody out.
  put(paths.window, "left behind");
  {
    posix::PosixProcess first(queues, paths, watch);
    EXPECT_TRUE(claim(first));
    EXPECT_TRUE(onReadable());
    EXPECT_EQ(reopened, 0) << "nobody called";
    EXPECT_EQ(another(), 0);
    EXPECT_TRUE(onReadable());
    EXPECT_EQ(reopened, 1);
    // Two before the main loop came round are one: the window comes to the front once.
    EXPECT_EQ(another(), 0);
    EXPECT_EQ(another(), 0);
    EXPECT_TRUE(onReadable());
    EXPECT_TRUE(onReadable());
    EXPECT_EQ(reopened, 2);
    std::filesystem::remove(paths.window);
    EXPECT_EQ(another(), 1) << "a deleted lock can be had anew";
  }
  EXPECT_EQ(another(), 1) << "free again with its holder gone, though its file is still there";
  const posix::InstanceLockPaths nowhere{"/nowhere/session", "/nowhere/window"};
  EXPECT_TRUE(posix::PosixProcess(queues, nowhere, watch).acquireWindowInstance([] {}));
}

}  // namespace
}  // namespace dormel
