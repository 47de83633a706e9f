// A hold by the clock: since when all keys are down together, and how long they have to be.
#pragma once

#include <algorithm>
#include <cmath>
#include <optional>

#include "platform/Time.h"

namespace dormel {

struct Hold {
  std::optional<Seconds> since;  ///< uptime; nothing while none runs
  Seconds duration = 0;

  /// How much of it is done at `uptime`, 0 to 1.
  [[nodiscard]] double progress(Seconds uptime) const {
    return since ? std::clamp((uptime - *since) / duration, 0.0, 1.0) : 0;
  }
  /// Whole seconds still to hold, rounded up; all of them when none runs.
  [[nodiscard]] int secondsRemaining(Seconds uptime) const {
    return since ? std::max(0, static_cast<int>(std::ceil(duration - (uptime - *since)))) : static_cast<int>(duration);
  }
  friend bool operator==(const Hold&, const Hold&) = default;
};

}  // namespace dormel
