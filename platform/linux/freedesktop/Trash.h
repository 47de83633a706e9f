// The desktop's trash, as all desktops share it.
//
// Not the toolkit's: in Qt 6.4 it loops without end where the file may not be taken from its folder, and without a
// ~/.local/share it makes a trash in the working folder.
#pragma once

#include <optional>
#include <string>

#include "platform/Files.h"

namespace dormel::posix {
class PosixChildProcesses;
}

namespace dormel::freedesktop {

/// Something in the trash.
struct Trashed {
  std::string original;  ///< where it stood
  std::string place;     ///< where it lies
  std::string record;    ///< the file that says so
};

/// Moves a file or folder to the trash, from where the desktop's file manager can put it back: to the trash of its own
/// disk, or where that cannot be had to the one of the home folder, by copying. Either it has moved whole, or it
/// stands where it stood. `what`, if given, is told what to put back.
FileResult moveToTrash(posix::PosixChildProcesses& children, const std::string& path,
                       std::optional<Trashed>* what = nullptr);

/// Takes it out of the trash again. Where that cannot be, it stays there.
void putBack(posix::PosixChildProcesses& children, const Trashed& what);

}  // namespace dormel::freedesktop
