#include "platform/linux/freedesktop/CreatedFolders.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <sstream>
#include <vector>

#include "platform/Identifiers.h"
#include "platform/linux/freedesktop/BaseDirectories.h"
#include "platform/linux/freedesktop/TextFile.h"
#include "platform/linux/posix/FileDescriptor.h"
#include "platform/linux/posix/PosixFiles.h"

namespace dormel::freedesktop {
namespace {

/// One path in each line. A file of its own in a folder that is everybody's: it needs to be there before any of ours.
std::string recordPath() { return stateHome() + "/" + BUNDLE_IDENTIFIER + ".folders"; }

posix::FileDescriptor openRecord(const std::string& path) {
  return posix::FileDescriptor(::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
}

}  // namespace

void noteCreatedFolder(const std::string& path) {
  std::string lines = path + "\n";
  const std::string record = recordPath();
  posix::FileDescriptor file = openRecord(record);
  if (!file.valid() && errno == ENOENT) {
    posix::PosixFiles([&](const std::string& above) { lines += above + "\n"; }).createDirectories(stateHome(), 0700);
    file = openRecord(record);
  }
  // In one write, because other processes of ours may be adding theirs.
  if (file.valid()) static_cast<void>(!::write(file.get(), lines.data(), lines.size()));
}

void removeCreatedFolders() {
  const std::string record = recordPath();
  const auto text = readTextFile(record);
  if (!text) return;
  ::unlink(record.c_str());
  std::vector<std::string> folders;
  std::istringstream lines(*text);
  for (std::string line; std::getline(lines, line);) folders.push_back(line);
  // What lies in a folder has a longer path than the folder.
  std::sort(folders.begin(), folders.end(),
            [](const std::string& a, const std::string& b) { return a.size() > b.size(); });
  for (const std::string& folder : folders) ::rmdir(folder.c_str());
}

}  // namespace dormel::freedesktop
