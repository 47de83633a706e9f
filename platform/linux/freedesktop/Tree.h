// Whole folders with all they hold: copying them, and whether they can be taken away. Any thread; may take seconds.
#pragma once

#include <string>

#include "platform/Files.h"

namespace dormel::posix {
class PosixChildProcesses;
}

namespace dormel::freedesktop {

/// Copies a file or a folder with all it holds; permissions, times and links are kept, extended attributes are not.
/// `to` appears whole and safely on the disk, or not at all. Nothing may exist there.
FileResult copyTree(posix::PosixChildProcesses& children, const std::string& from, const std::string& to);

/// Whether this user may delete the file, or the folder with all it holds.
[[nodiscard]] bool isTreeDeletable(const std::string& path);

}  // namespace dormel::freedesktop
