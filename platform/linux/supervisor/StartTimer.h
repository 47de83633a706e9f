// The moment of a job's next start, as something to wait for. It costs no wakeup before that moment, and none but
// one when somebody sets the clock or moves the machine to another time zone.
#pragma once

#include <ctime>
#include <optional>

#include "platform/linux/jobs/Job.h"
#include "platform/linux/posix/FileDescriptor.h"

namespace dormel::jobs::supervisor {

class StartTimer {
 public:
  StartTimer();

  /// Waits for the next start after now; for none when there is no start time.
  void arm(std::optional<StartTime> start);

  /// Become readable when there is something for `due` to look at.
  [[nodiscard]] int clock() const { return clock_.get(); }
  [[nodiscard]] int zone() const { return zone_.get(); }

  /// Whether the start has come, be it that the clock was set past it or that the machine slept through it. Then,
  /// and whenever the clock or the zone has changed, the timer is armed anew.
  [[nodiscard]] bool due();

  [[nodiscard]] std::optional<std::time_t> next() const { return next_; }

 private:
  void watchZone();

  posix::FileDescriptor clock_;
  posix::FileDescriptor zone_;
  std::optional<StartTime> start_;
  std::optional<std::time_t> next_;
};

}  // namespace dormel::jobs::supervisor
