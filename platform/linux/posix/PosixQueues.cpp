#include "platform/linux/posix/PosixQueues.h"

#include <pthread.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <future>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/linux/posix/FileDescriptor.h"

namespace dormel::posix {
namespace {

using Steady = std::chrono::steady_clock;

Steady::duration steady(Seconds seconds) {
  return std::chrono::duration_cast<Steady::duration>(std::chrono::duration<double>(seconds));
}

void nameThisThread(std::string name) {
  name = name.substr(name.find_last_of('.') + 1).substr(0, 15);  // the kernel keeps fifteen characters
  pthread_setname_np(pthread_self(), name.c_str());
}

/// A thread of its own for `work`, or none where the machine has none left: whoever asked does without rather than die
/// of it.
std::thread startThread(Task work) {
  try {
    return std::thread(std::move(work));
  } catch (const std::system_error&) {
    return {};
  }
}

/// How much earlier than prescribed the main loop may tick, to do it with whatever wakes it then, and how much later
/// the thread does, so that it need not wake to find that the main loop lives.
Seconds leeway(Seconds interval) { return std::min(POLL_ACCURACY, interval / 10); }

timespec timespecOf(Seconds seconds) {
  const auto whole = static_cast<time_t>(seconds);
  return {whole, static_cast<long>((seconds - static_cast<double>(whole)) * 1e9)};
}

/// Ticks on the main loop while that turns. Each of those ticks puts off a kernel timer for which a thread waits, so
/// the thread runs only while the main loop is stuck.
class GuardedTimer final : public BackgroundTimer {
 public:
  GuardedTimer(RunLoop& loop, Seconds first, Seconds interval, Task tick)
      : loop_(loop), shared_(std::make_shared<Shared>(interval, std::move(tick))) {
    shared_->standInAfter(first + leeway(interval));
    std::thread thread = startThread([shared = shared_] { shared->standIn(); });
    if (thread.joinable()) thread.detach();  // it ends by itself, after a tick that may be running in it
    schedule(first);
  }
  GuardedTimer(const GuardedTimer&) = delete;
  GuardedTimer& operator=(const GuardedTimer&) = delete;
  ~GuardedTimer() override { stop(); }

  void cancel() override { stop(); }

 private:
  class Shared {
   public:
    Shared(Seconds interval, Task tick) : interval_(interval), tick_(std::move(tick)) {}

    [[nodiscard]] Seconds interval() const { return interval_; }
    void tick() const { tick_(); }

    void standInAfter(Seconds delay) const {
      const itimerspec times{timespecOf(interval_), timespecOf(delay)};
      ::timerfd_settime(alarm_.get(), 0, &times, nullptr);
    }

    void standIn() const {
      nameThisThread("watchdog");
      std::uint64_t elapsed = 0;
      while (::read(alarm_.get(), &elapsed, sizeof elapsed) > 0 || errno == EINTR) {
        if (isCancelled_) return;
        tick_();
      }
    }

    void cancel() {
      isCancelled_ = true;
      standInAfter(1e-9);  // the thread has to wake to end
    }

   private:
    const Seconds interval_;
    const Task tick_;
    const FileDescriptor alarm_{::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC)};
    std::atomic<bool> isCancelled_ = false;
  };

  void schedule(Seconds delay) {
    const Seconds early = leeway(shared_->interval());
    timer_ = loop_.schedule(
        delay - early, false, [this] { tick(); }, early);
  }

  void tick() {
    const std::shared_ptr<Shared> shared = shared_;  // the tick may destroy this
    shared->standInAfter(shared->interval() + leeway(shared->interval()));
    schedule(shared->interval());
    shared->tick();
  }

  void stop() {
    loop_.cancel(timer_);
    shared_->cancel();
  }

  RunLoop& loop_;
  std::shared_ptr<Shared> shared_;
  TimerId timer_ = TimerId::none;
};

}  // namespace

class PosixQueues::Serial final : public SerialQueue {
 public:
  Serial(std::string label, std::shared_ptr<Registry> registry);
  Serial(const Serial&) = delete;
  Serial& operator=(const Serial&) = delete;
  ~Serial() override;

  void async(Task task) override {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
    if (!thread_.joinable()) thread_ = startThread([this] { run(); });
    wake_.notify_all();
  }

  bool waitUntilDry(Steady::time_point deadline) {
    std::unique_lock lock(mutex_);
    return wake_.wait_until(lock, deadline, [this] { return tasks_.empty() && !running_; });
  }

 private:
  void run() {
    nameThisThread(label_);
    std::unique_lock lock(mutex_);
    for (;;) {
      wake_.wait(lock, [this] { return ended_ || !tasks_.empty(); });
      if (tasks_.empty()) return;
      const Task task = std::move(tasks_.front());
      tasks_.pop_front();
      running_ = true;
      lock.unlock();
      task();
      lock.lock();
      running_ = false;
      wake_.notify_all();
    }
  }

  const std::string label_;
  const std::shared_ptr<Registry> registry_;
  std::mutex mutex_;
  std::condition_variable wake_;
  std::deque<Task> tasks_;
  bool running_ = false;
  bool ended_ = false;
  std::thread thread_;
};

struct PosixQueues::Registry {
  std::mutex mutex;
  std::vector<Serial*> queues;
};

PosixQueues::Serial::Serial(std::string label, std::shared_ptr<Registry> registry)
    : label_(std::move(label)), registry_(std::move(registry)) {
  const std::lock_guard lock(registry_->mutex);
  registry_->queues.push_back(this);
}

PosixQueues::Serial::~Serial() {
  {
    const std::lock_guard lock(registry_->mutex);
    std::erase(registry_->queues, this);
  }
  {
    const std::lock_guard lock(mutex_);
    ended_ = true;
    wake_.notify_all();
  }
  if (thread_.joinable()) thread_.join();
}

PosixQueues::PosixQueues(RunLoop& loop) : loop_(loop), registry_(std::make_shared<Registry>()) {}

PosixQueues::~PosixQueues() = default;

std::unique_ptr<SerialQueue> PosixQueues::makeSerial(std::string_view label) {
  return std::make_unique<Serial>(std::string(label), registry_);
}

std::unique_ptr<BackgroundTimer> PosixQueues::makeBackgroundTimer(Seconds first, Seconds interval, Task tick) {
  return std::make_unique<GuardedTimer>(loop_, first, interval, std::move(tick));
}

void doWithin(std::chrono::milliseconds limit, Task work) {
  auto done = std::make_shared<std::promise<void>>();
  const auto isDone = done->get_future();
  std::thread thread = startThread([done, work = std::move(work)] {
    work();
    done->set_value();
  });
  if (!thread.joinable()) return;
  thread.detach();
  isDone.wait_for(limit);
}

bool PosixQueues::drain(Seconds limit) {
  const auto deadline = Steady::now() + steady(limit);
  const std::lock_guard lock(registry_->mutex);
  bool dry = true;
  for (Serial* queue : registry_->queues) dry = queue->waitUntilDry(deadline) && dry;
  return dry;
}

}  // namespace dormel::posix
