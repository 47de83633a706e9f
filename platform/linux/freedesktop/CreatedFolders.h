// The folders that the program made for its files, so that an uninstall takes away those and no others.
#pragma once

#include <string>

namespace dormel::freedesktop {

/// Puts the folder into the record. One that cannot be written loses the note. Any thread, any of our processes.
void noteCreatedFolder(const std::string& path);

/// Removes every folder of the record in which nothing is left, and the record.
void removeCreatedFolders();

}  // namespace dormel::freedesktop
