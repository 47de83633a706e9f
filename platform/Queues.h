// Serial queues for file writes off the main thread, and one kind of timer that keeps ticking while the main thread is
// stuck.
#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "platform/RunLoop.h"
#include "platform/Time.h"

namespace dormel {

/// Runs its tasks one at a time, in the order they were handed over, never on the main thread.
/// What was handed over is still run when the queue is destroyed or the process ends in an orderly way
/// (`Process::exit`), within a bound of two seconds at the latter: a hung disk must not keep the lock up.
class SerialQueue {
 public:
  virtual ~SerialQueue() = default;
  /// Any thread. Returns at once. Where no thread can be had at the moment, the task waits for the next one handed
  /// over.
  virtual void async(Task task) = 0;
};

/// A timer that does not depend on the main thread. Destroying it (or `cancel`) stops the ticks; a tick that is running
/// on another thread finishes. Main thread only; may be destroyed from inside its own tick there.
class BackgroundTimer {
 public:
  virtual ~BackgroundTimer() = default;
  virtual void cancel() = 0;
};

class Queues {
 public:
  virtual ~Queues() = default;

  /// `label` names the queue's thread in debuggers.
  [[nodiscard]] virtual std::unique_ptr<SerialQueue> makeSerial(std::string_view label) = 0;

  /// Calls `tick` after `first` seconds, then every `interval`: not later than then, up to a second earlier, on the
  /// main thread; where that is stuck, up to a second later, on another one. Both may be in it at once. Where no thread
  /// can be had, on the main thread alone. Main thread only.
  [[nodiscard]] virtual std::unique_ptr<BackgroundTimer> makeBackgroundTimer(Seconds first, Seconds interval,
                                                                             Task tick) = 0;
};

}  // namespace dormel
