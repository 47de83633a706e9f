#include "platform/linux/posix/PosixQueues.h"

#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

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

class ThreadTimer final : public BackgroundTimer {
 public:
  ThreadTimer(Seconds first, Seconds interval, Task tick) : state_(std::make_shared<State>()) {
    auto run = [state = state_, first, interval, tick = std::move(tick)] {
      nameThisThread("watchdog");
      auto next = Steady::now() + steady(first);
      std::unique_lock lock(state->mutex);
      while (!state->wake.wait_until(lock, next, [&] { return state->cancelled; })) {
        lock.unlock();
        tick();
        lock.lock();
        next = std::max(next + steady(interval), Steady::now());
      }
    };
    try {
      std::thread(std::move(run)).detach();  // it may be destroyed by its own tick, which cannot join itself
    } catch (const std::system_error&) {
      // No more threads for this user now. What the main thread checks has to do.
    }
  }
  ThreadTimer(const ThreadTimer&) = delete;
  ThreadTimer& operator=(const ThreadTimer&) = delete;
  ~ThreadTimer() override { stop(); }

  void cancel() override { stop(); }

 private:
  struct State {
    std::mutex mutex;
    std::condition_variable wake;
    bool cancelled = false;
  };

  void stop() {
    const std::lock_guard lock(state_->mutex);
    state_->cancelled = true;
    state_->wake.notify_all();
  }

  std::shared_ptr<State> state_;
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
    try {
      if (!thread_.joinable()) thread_ = std::thread([this] { run(); });
    } catch (const std::system_error&) {
      // No more threads for this user now. The next task tries again; a lock does not end because of its log.
    }
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

PosixQueues::PosixQueues() : registry_(std::make_shared<Registry>()) {}

PosixQueues::~PosixQueues() = default;

std::unique_ptr<SerialQueue> PosixQueues::makeSerial(std::string_view label) {
  return std::make_unique<Serial>(std::string(label), registry_);
}

std::unique_ptr<BackgroundTimer> PosixQueues::makeBackgroundTimer(Seconds first, Seconds interval, Task tick) {
  return std::make_unique<ThreadTimer>(first, interval, std::move(tick));
}

bool PosixQueues::drain(Seconds limit) {
  const auto deadline = Steady::now() + steady(limit);
  const std::lock_guard lock(registry_->mutex);
  bool dry = true;
  for (Serial* queue : registry_->queues) dry = queue->waitUntilDry(deadline) && dry;
  return dry;
}

}  // namespace dormel::posix
