// The process's main loop: tasks, timers and descriptors, on libsystemd's sd-event. One per process; create it on the
// main thread. Everything that it calls runs on the main thread, one piece at a time, never inside the call that handed
// it over. Main thread only, but for `async` and `isMainThread`.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "platform/Registration.h"
#include "platform/RunLoop.h"
#include "platform/common/HandlerList.h"

struct sd_event;
struct sd_event_source;

namespace dormel {

/// A piece of work that goes on for long keeps everything else waiting, but nothing that comes again and again does:
/// descriptors, timers and tasks take turns.
class EventLoop final : public RunLoop {
 public:
  /// Ends a watch, or the calls before each wait, when it is destroyed or reset; both may happen inside its own call.
  /// Empty by default. End it before its descriptor is closed.
  using Watch = std::unique_ptr<Registration>;

  /// Throws std::system_error where the system has no descriptor left for it.
  EventLoop();
  EventLoop(const EventLoop&) = delete;
  EventLoop& operator=(const EventLoop&) = delete;
  ~EventLoop() override;

  // RunLoop. Timers never come early. They come as soon after their time as the system lets them, a repeating one with
  // an accuracy as soon as something else wakes the loop within that. Repeating ones do not drift.
  void async(Task task) override;
  void asyncAfter(Seconds delay, Task task) override;
  [[nodiscard]] bool isMainThread() const override { return std::this_thread::get_id() == mainThread_; }
  using RunLoop::schedule;
  TimerId schedule(Seconds interval, bool repeats, Task task, Seconds accuracy) override;
  void cancel(TimerId id) override;

  /// Calls `action` with the EPOLL* bits that are up, as long as the watch lives. Level triggered: what is not dealt
  /// with comes again. At most one watch for a descriptor; empty where it cannot be watched (a regular file).
  [[nodiscard]] Watch watch(int fd, std::uint32_t events, std::function<void(std::uint32_t)> action);

  /// Calls `action` before the loop waits, each time, and between pieces of work, too: the place to flush a connection
  /// and to drain what was read while waiting for a reply. What it posts or schedules is done before the wait.
  [[nodiscard]] Watch beforeWaiting(Task action) { return beforeWaiting_.add(std::move(action)); }

  /// For what attaches to the same loop (sd_bus_attach_event). Not null.
  [[nodiscard]] sd_event* handle() const { return event_.get(); }

  /// Runs until `stop`, or until the system fails it for good. Not in a process whose toolkit has the main loop.
  void run();
  void stop();

  /// How a toolkit's loop carries this one: it calls `dispatchPending` when this descriptor is readable, and right
  /// before each time it waits.
  [[nodiscard]] int descriptor() const;
  /// Does what there is to do without waiting, for about 5 ms; where more is left, the descriptor says so. Inside a
  /// call of this loop it does nothing: what runs a toolkit's inner loop from here stops this one meanwhile.
  void dispatchPending();

 private:
  using Steady = std::chrono::steady_clock;
  class Descriptor;
  struct Unref {
    void operator()(sd_event* event) const;
    void operator()(sd_event_source* source) const;
  };
  using Source = std::unique_ptr<sd_event_source, Unref>;
  struct Scheduled {
    Steady::time_point due;
    std::chrono::nanoseconds interval;  ///< of a repeating one; 0: once
    std::chrono::nanoseconds accuracy;
    std::shared_ptr<const Task> task;
  };

  static int posted(sd_event_source* source, int fd, std::uint32_t events, void* self);
  static int prepare(sd_event_source* source, void* self);
  static int elapsed(sd_event_source* source, std::uint64_t usec, void* self);
  void ring() const;
  void arm();
  void tick();

  const std::thread::id mainThread_ = std::this_thread::get_id();
  std::unique_ptr<sd_event, Unref> event_;
  int bell_ = -1;  ///< an eventfd that wakes the loop
  Source bellSource_;
  Source timerSource_;
  std::optional<Steady::time_point> armedFor_;
  std::map<std::uint64_t, Scheduled> timers_;
  std::uint64_t lastTimer_ = 0;
  HandlerList<> beforeWaiting_;
  bool isStopped_ = false;
  std::mutex mutex_;
  std::vector<Task> posted_;
};

}  // namespace dormel
