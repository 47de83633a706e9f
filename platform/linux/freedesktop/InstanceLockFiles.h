// Where the processes of one user and display find out about each other.
#pragma once

#include <string>

#include "platform/linux/posix/PosixProcess.h"

namespace dormel::freedesktop {

/// In the runtime folder, where there is one, else in the home folder; one set for each display.
[[nodiscard]] posix::InstanceLockPaths instanceLockFiles();

/// The path of the mark that a lock of this Wayland session's compositor is up; in the same folder.
[[nodiscard]] std::string lockMarkFile();

/// Deletes the instance locks of every display.
void removeInstanceLockFiles();

}  // namespace dormel::freedesktop
