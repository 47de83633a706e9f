// Ending a session lock whose owner died, by its mark. Any thread and any process; blocks.
#pragma once

#include <chrono>
#include <string>

namespace dormel::wayland {

enum class LockRelease {
  released,  ///< it was taken over and given back, and the mark is gone
  owned,     ///< somebody who lives has it, or there is no such lock at this compositor
  failed,    ///< no such compositor, or it did not answer in time
};

/// `display` is as in $WAYLAND_DISPLAY; empty means that.
[[nodiscard]] LockRelease releaseAbandonedLock(const std::string& mark, const std::string& display,
                                               std::chrono::milliseconds limit);

}  // namespace dormel::wayland
