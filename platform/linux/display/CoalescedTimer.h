// A task for a later turn of the main loop: however often it is asked for until then, it runs once. Destroying it takes
// it back. Main thread only.
#pragma once

#include <utility>

#include "platform/RunLoop.h"

namespace dormel {

class CoalescedTimer {
 public:
  /// `loop` outlives it.
  CoalescedTimer(RunLoop& loop, Task task, int milliseconds = 0)
      : loop_(loop), task_(std::move(task)), delay_(milliseconds / 1000.0) {}
  CoalescedTimer(const CoalescedTimer&) = delete;
  CoalescedTimer& operator=(const CoalescedTimer&) = delete;
  ~CoalescedTimer() { forget(); }

  void ask() {
    if (timer_ != TimerId::none) return;
    timer_ = loop_.schedule(delay_, false, [this] {
      timer_ = TimerId::none;
      const Task task = task_;  // it may destroy this
      task();
    });
  }
  void forget() {
    if (timer_ != TimerId::none) loop_.cancel(std::exchange(timer_, TimerId::none));
  }

 private:
  RunLoop& loop_;
  Task task_;
  Seconds delay_;
  TimerId timer_ = TimerId::none;
};

}  // namespace dormel
