// The main thread's queue and timers.
//
// Everything handed to a RunLoop runs on the main thread, one piece at a time, never inside the call that
// handed it over. Intervals are monotonic: setting the wall clock moves no timer.
#pragma once

#include <cstdint>
#include <functional>
#include <utility>

#include "platform/Time.h"

namespace dormel {

using Task = std::function<void()>;

/// The accuracy of what looks at the world every few seconds: with it, all that is done together, by the same wake-up.
constexpr Seconds POLL_ACCURACY = 1.0;

enum class TimerId : std::uint64_t { none = 0 };

class RunLoop {
 public:
  virtual ~RunLoop() = default;

  /// Runs `task` on the main thread after whatever it is doing now, in the order of the calls. Any thread.
  virtual void async(Task task) = 0;

  /// Runs `task` on the main thread once, `delay` seconds from now. Main thread only.
  virtual void asyncAfter(Seconds delay, Task task) = 0;

  /// Whether the caller is on the main thread.
  [[nodiscard]] virtual bool isMainThread() const = 0;

  /// Runs `task` every `interval` seconds (or once), first after one interval. Missed ticks are not made up
  /// for. Each comes up to `accuracy` seconds after its time, with something else if it can: give it for what merely
  /// looks at the world now and then, never for what a user sees or counts on. Main thread only. Use `Timer`, which
  /// cancels by itself.
  virtual TimerId schedule(Seconds interval, bool repeats, Task task, Seconds accuracy) = 0;
  TimerId schedule(Seconds interval, bool repeats, Task task) {
    return schedule(interval, repeats, std::move(task), 0);
  }

  /// After this no tick of `id` runs, not even one that is already due. An id that ran out or was cancelled
  /// before is ignored, and so is a timer's own id inside its tick: the tick finishes undisturbed.
  virtual void cancel(TimerId id) = 0;
};

/// A scheduled timer, cancelled when it is invalidated, replaced or destroyed. Safe to destroy in its own tick.
class Timer {
 public:
  Timer() = default;
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;
  Timer(Timer&& other) noexcept;
  Timer& operator=(Timer&& other) noexcept;
  ~Timer() { invalidate(); }

  // On the main loop of the platform in force, or on the one given.
  [[nodiscard]] static Timer repeating(Seconds interval, Task tick, Seconds accuracy = 0);
  [[nodiscard]] static Timer repeating(RunLoop& loop, Seconds interval, Task tick, Seconds accuracy = 0);
  [[nodiscard]] static Timer once(Seconds delay, Task tick);
  [[nodiscard]] static Timer once(RunLoop& loop, Seconds delay, Task tick);

  /// Cancels and empties this timer; does nothing when it is empty.
  void invalidate();

  /// Whether a timer is held. A one-shot timer stays held after it fired until it is invalidated.
  explicit operator bool() const { return id_ != TimerId::none; }

 private:
  Timer(RunLoop& loop, TimerId id) : loop_(&loop), id_(id) {}

  RunLoop* loop_ = nullptr;
  TimerId id_ = TimerId::none;
};

}  // namespace dormel
