// The desktop's trash, as all desktops share it.
//
// Not the toolkit's: in Qt 6.4 it loops without end where the file may not be taken from its folder, and without a
// ~/.local/share it makes a trash in the working folder.
#pragma once

#include <string>

#include "platform/Files.h"

namespace dormel::posix {
class PosixChildProcesses;
}

namespace dormel::freedesktop {

/// Moves a file or folder to the trash, from where the desktop's file manager can put it back: to the trash of its own
/// disk, or where that cannot be had to the one of the home folder, by copying. Either it has moved whole, or it
/// stands where it stood.
FileResult moveToTrash(posix::PosixChildProcesses& children, const std::string& path);

}  // namespace dormel::freedesktop
