// Where the processes of one user and display find out about each other.
#pragma once

#include "platform/linux/posix/PosixProcess.h"

namespace dormel::freedesktop {

/// In the runtime folder, where there is one, else in the home folder; one set for each display.
[[nodiscard]] posix::Seats seatFiles();

/// Deletes those of every display.
void removeSeatFiles();

}  // namespace dormel::freedesktop
