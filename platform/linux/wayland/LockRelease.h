// Ending a session lock whose owner died. Any thread and any process; blocks.
#pragma once

#include <chrono>
#include <string>

#include "platform/common/lock/AbandonedLockPolicy.h"

namespace dormel::wayland {

/// The lock that nobody owns. `display` is as in $WAYLAND_DISPLAY; empty means that.
[[nodiscard]] LockRelease releaseLock(const std::string& display, std::chrono::milliseconds limit);

/// The same for the lock that `mark` is of, if that was abandoned: the mark goes with it.
[[nodiscard]] LockRelease releaseAbandonedLock(const std::string& mark, const std::string& display,
                                               std::chrono::milliseconds limit);

}  // namespace dormel::wayland
