// Whole folders with all they hold: copying them, and whether they can be taken away. Any thread; may take seconds.
#pragma once

#include <functional>
#include <string>

#include "platform/Files.h"

namespace dormel::posix {
class PosixChildProcesses;
}

namespace dormel::freedesktop {

/// Copies a file or a folder with all it holds; times and links are kept, permissions too, but that the owner may
/// change the copy (a disk image gives nobody that right); extended attributes are not. `to` appears whole and safely
/// on the disk, or not at all. Nothing may exist there when `makeRoom` has returned, which is called once the copy is
/// whole.
FileResult copyTree(posix::PosixChildProcesses& children, const std::string& from, const std::string& to,
                    const std::function<FileResult()>& makeRoom = {});

/// Whether this user may delete the file, or the folder with all it holds.
[[nodiscard]] bool isTreeDeletable(const std::string& path);

}  // namespace dormel::freedesktop
