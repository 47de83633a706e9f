// Work off the main thread: serial queues for file writes, and one kind of timer that keeps ticking while the
// main thread is stuck.
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

/// A timer on a thread of its own. Destroying it (or `cancel`) stops the ticks; a tick that is running finishes.
/// May be destroyed from inside its own tick.
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

  /// Calls `tick` off the main thread, first after `first` seconds, then every `interval`, with no leeway. Where no
  /// thread can be had, never.
  [[nodiscard]] virtual std::unique_ptr<BackgroundTimer> makeBackgroundTimer(Seconds first, Seconds interval,
                                                                             Task tick) = 0;
};

}  // namespace dormel
