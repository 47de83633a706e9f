// The main loop, in real time: order, ends, threads, and that nothing keeps the others waiting.
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/epoll.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <thread>

#include "platform/linux/loop/EventLoop.h"

namespace dormel {
namespace {

Seconds now() { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); }

/// How the loop is run: by itself, or by another one that knows its descriptor.
using Run = void (*)(EventLoop&, const bool& isDone);

void runItself(EventLoop& loop, const bool& isDone) {
  const auto look = loop.beforeWaiting([&] {
    if (isDone) loop.stop();
  });
  loop.run();
}

void runCarried(EventLoop& loop, const bool& isDone) {
  for (;;) {
    loop.dispatchPending();  // as a toolkit does before it waits
    if (isDone) return;
    pollfd carried{loop.descriptor(), POLLIN, 0};
    ASSERT_EQ(::poll(&carried, 1, 10'000), 1) << "nothing comes any more";
    loop.dispatchPending();
  }
}

struct Pipe {
  Pipe() { EXPECT_EQ(::pipe(ends.data()), 0); }
  ~Pipe() {
    for (const int end : ends) ::close(end);
  }
  std::array<int, 2> ends{};
};

class Loop : public testing::TestWithParam<Run> {
 protected:
  void runUntilDone() { GetParam()(loop, isDone); }

  EventLoop loop;
  bool isDone = false;
  std::string story;
};

TEST_P(Loop, RunsInOrderAndNothingInsideTheCallThatHandedItOver) {
  loop.async([&] {
    loop.async([&] { story += "c"; });
    loop.asyncAfter(0, [&] { isDone = true; });
    story += "a";
  });
  loop.async([&] { story += "b"; });
  EXPECT_EQ(story, "");
  runUntilDone();
  EXPECT_EQ(story, "abc");
}

TEST_P(Loop, TimersComeInTheirOrderNeverEarlyAndHardlyLate) {
  const Seconds start = now();
  Seconds late = -1;
  loop.asyncAfter(0.06, [&] {
    story += "last";
    isDone = true;
  });
  loop.asyncAfter(0.03, [&] {
    late = now() - start - 0.03;
    loop.asyncAfter(0.01, [&] { story += "inner "; });
  });
  const TimerId cancelled = loop.schedule(0.02, false, [&] { story += "cancelled "; });
  loop.asyncAfter(0.01, [&] { loop.cancel(cancelled); });
  runUntilDone();
  EXPECT_EQ(story, "inner last");
  EXPECT_GE(late, 0);
  EXPECT_LT(late, 0.02);  // a quarter of a second, were it not asked for exactly
}

TEST_P(Loop, RepeatingTimersDoNotDriftAndMakeNothingUp) {
  const Seconds start = now();
  std::vector<int> ticks;
  TimerId id = TimerId::none;
  id = loop.schedule(0.02, true, [&, held = std::make_shared<int>(20)] {
    ticks.push_back(static_cast<int>((now() - start) * 1000 / *held));
    if (ticks.size() == 2) std::this_thread::sleep_for(std::chrono::milliseconds(50));  // two are missed
    if (ticks.size() < 6) return;
    loop.cancel(id);  // the tick goes on with what it holds
    isDone = *held == 20;
  });
  runUntilDone();
  ASSERT_EQ(ticks.size(), 6U);
  EXPECT_GE(ticks[2], 5) << "made up for";
  EXPECT_LE(now() - start, 0.2);
  for (std::size_t i = 1; i < ticks.size(); ++i) EXPECT_GT(ticks[i], ticks[i - 1]) << "off its grid";
}

TEST_P(Loop, ACoarseTimerComesWithTheOthers) {
  const auto exact = loop.schedule(0.04, true, [&] { story += "exact "; });
  const auto coarse = loop.schedule(
      0.05, true, [&] { story += "coarse "; }, 0.5);
  loop.asyncAfter(0.13, [&] { isDone = true; });
  runUntilDone();
  EXPECT_EQ(story, "exact coarse exact coarse exact ");
  loop.cancel(exact);
  loop.cancel(coarse);
}

TEST_P(Loop, AWatchEndsInItsOwnCallAndItsNumberMayBeHadAnew) {
  Pipe first;
  Pipe second;
  static_cast<void>(!::write(first.ends[1], "x", 1));
  static_cast<void>(!::write(second.ends[1], "y", 1));
  EventLoop::Watch watch;
  EventLoop::Watch next;
  watch = loop.watch(first.ends[0], EPOLLIN, [&](std::uint32_t events) {
    story += (events & EPOLLIN) != 0 ? "first " : "? ";
    watch.reset();
    ::dup2(second.ends[0], first.ends[0]);
    next = loop.watch(first.ends[0], EPOLLIN, [&](std::uint32_t) {
      story += "second ";
      next.reset();
      isDone = true;
    });
  });
  EXPECT_TRUE(watch);
  EXPECT_FALSE(loop.watch(::fileno(std::tmpfile()), EPOLLIN, [](std::uint32_t) {})) << "files are always ready";
  runUntilDone();
  EXPECT_EQ(story, "first second ");
}

TEST_P(Loop, NothingIsKeptFromItsTurnByWhatComesAgainAndAgain) {
  Pipe full;
  static_cast<void>(!::write(full.ends[1], "x", 1));
  const auto busy = [] { std::this_thread::sleep_for(std::chrono::milliseconds(2)); };
  const auto watch = loop.watch(full.ends[0], EPOLLIN, [&](std::uint32_t) { busy(); });
  std::function<void()> again = [&] {
    busy();
    loop.async(again);
  };
  loop.async(again);
  const TimerId endless = loop.schedule(0, true, busy);
  const auto drain = loop.beforeWaiting(busy);
  const Seconds start = now();
  loop.asyncAfter(0.02, [&] { isDone = true; });
  runUntilDone();
  EXPECT_LT(now() - start, 1);
  loop.cancel(endless);
}

TEST_P(Loop, TakesTasksFromOtherThreadsWhileItWaitsAndWhatIsPostedBeforeTheWait) {
  bool isTold = false;
  const auto before = loop.beforeWaiting([&] {
    if (!std::exchange(isTold, true)) loop.async([&] { story += "posted "; });
  });
  EXPECT_TRUE(loop.isMainThread());
  std::thread other([&] {
    EXPECT_FALSE(loop.isMainThread());
    std::this_thread::sleep_for(std::chrono::milliseconds(20));  // so that it waits
    for (int i = 0; i < 1000; ++i) loop.async([this, i] { story += i == 999 ? "other" : ""; });
    loop.async([this] { isDone = true; });
  });
  runUntilDone();
  other.join();
  EXPECT_EQ(story, "posted other");
}

INSTANTIATE_TEST_SUITE_P(, Loop, testing::Values(&runItself, &runCarried),
                         [](const auto& info) { return info.index == 0 ? "Itself" : "Carried"; });

}  // namespace
}  // namespace dormel
