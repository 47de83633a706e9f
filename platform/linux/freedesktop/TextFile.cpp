#include "platform/linux/freedesktop/TextFile.h"

#include "platform/linux/freedesktop/CreatedFolders.h"
#include "platform/linux/posix/PosixFiles.h"

namespace dormel::freedesktop {

std::optional<std::string> readTextFile(const std::string& path) { return posix::PosixFiles().read(path); }

FileResult updateTextFile(const std::string& path, std::string_view text, bool& changed) {
  if (readTextFile(path) == text) return {};
  changed = true;
  return replaceTextFile(path, text);
}

FileResult createFolders(const std::string& path, unsigned mode) {
  return posix::PosixFiles(noteCreatedFolder).createDirectories(path, mode);
}

FileResult replaceTextFile(const std::string& path, std::string_view text) {
  if (auto error = createFolders(path.substr(0, path.rfind('/')))) return error;
  return posix::PosixFiles().writeAtomically(path, text);
}

}  // namespace dormel::freedesktop
