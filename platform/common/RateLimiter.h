// How often something may be done: `count` times within `period`, then no more often than they come free again.
// It keeps two programs that answer each other from doing so at full speed for ever.
#pragma once

#include <deque>

#include "platform/Time.h"

namespace dormel {

class RateLimiter {
 public:
  RateLimiter(const Clock& clock, std::size_t count, Seconds period) : clock_(clock), count_(count), period_(period) {}

  /// True, and one less is left; false when nothing is left at present.
  [[nodiscard]] bool spend() {
    const Seconds now = clock_.uptime();
    while (!spent_.empty() && now - spent_.front() >= period_) spent_.pop_front();
    if (spent_.size() >= count_) return false;
    spent_.push_back(now);
    return true;
  }

 private:
  const Clock& clock_;
  std::size_t count_;
  Seconds period_;
  std::deque<Seconds> spent_;
};

}  // namespace dormel
