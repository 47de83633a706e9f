#include "platform/linux/freedesktop/Tree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "platform/linux/posix/FileDescriptor.h"
#include "platform/linux/posix/PosixChildProcesses.h"
#include "platform/linux/posix/PosixFiles.h"

namespace dormel::freedesktop {
namespace {

/// The first line, without the tool's own name in front.
std::string complaint(const std::string& errors, const std::string& tool) {
  std::string line = errors.substr(0, errors.find('\n'));
  if (line.starts_with(tool + ": ")) line.erase(0, tool.size() + 2);
  return line.empty() ? "The copy failed." : line;
}

/// A rename that replaces nothing; errno says why it could not be.
bool moveToFreeName(const std::string& from, const std::string& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL) return false;
  // A file system that cannot promise it, so that we look first.
  if (std::filesystem::exists(std::filesystem::symlink_status(to))) {
    errno = EEXIST;
    return false;
  }
  return ::rename(from.c_str(), to.c_str()) == 0;
}

/// What came from a read-only disk lacks the rights to be renamed (a folder's ".." is an entry of its own), to be
/// updated and to be deleted. Errors are found by whoever then tries.
void giveOwnerWriteAccess(const std::string& tree) {
  namespace fs = std::filesystem;
  std::error_code ignored;
  const auto give = [&](const fs::path& path, const fs::file_status& status) {
    if (fs::is_symlink(status)) return;
    const auto rights = fs::is_directory(status) ? fs::perms::owner_all : fs::perms::owner_write;
    if ((status.permissions() & rights) != rights) fs::permissions(path, rights, fs::perm_options::add, ignored);
  };
  give(tree, fs::symlink_status(tree, ignored));
  for (auto entry = fs::recursive_directory_iterator(tree, ignored); entry != fs::end(entry);
       entry.increment(ignored)) {
    give(entry->path(), entry->symlink_status(ignored));
  }
}

/// Everything on the disk that the folder lies on is safe there.
FileResult flushDisk(const std::string& folder) {
  const posix::FileDescriptor disk(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!disk.valid() || ::syncfs(disk.get()) != 0) return posix::lastError();
  return {};
}

bool inSticky(const struct stat& folder, const struct stat& entry) {
  return (folder.st_mode & S_ISVTX) != 0 && ::geteuid() != 0 && ::geteuid() != folder.st_uid &&
         ::geteuid() != entry.st_uid;
}

bool canTakeFrom(const std::string& folder, const std::string& entry) {
  struct stat around {};
  struct stat own {};
  return ::access(folder.c_str(), W_OK | X_OK) == 0 && ::stat(folder.c_str(), &around) == 0 &&
         ::lstat(entry.c_str(), &own) == 0 && !inSticky(around, own);
}

}  // namespace

FileResult copyTree(posix::PosixChildProcesses& children, const std::string& from, const std::string& to,
                    const std::function<FileResult()>& makeRoom) {
  namespace fs = std::filesystem;
  const fs::path destination = to;
  std::string staging = (destination.parent_path() / ("." + destination.filename().string() + ".XXXXXX")).string();
  if (::mkdtemp(staging.data()) == nullptr) return posix::lastError();
  const fs::path copy = fs::path(staging) / destination.filename();

  const auto outcome =
      children.runHearingErrors("/bin/cp", {"-pR", "--no-target-directory", "--", from, copy.string()});
  giveOwnerWriteAccess(copy.string());  // of half a copy, too, which is to be deleted
  FileResult result;
  if (outcome.status != 0) result = FileError{complaint(outcome.errors, "/bin/cp")};
  // The scheduler will name this copy: a power cut must not turn it into empty files.
  if (!result) result = flushDisk(staging);
  if (!result && makeRoom) result = makeRoom();
  if (!result && !moveToFreeName(copy.string(), to)) result = posix::lastError();
  std::error_code ignored;
  fs::remove_all(staging, ignored);
  return result;
}

bool isTreeDeletable(const std::string& path) {
  namespace fs = std::filesystem;
  if (!canTakeFrom(fs::path(path).parent_path().string(), path)) return false;
  std::error_code error;
  if (!fs::is_directory(fs::symlink_status(path, error))) return !error;
  for (auto entry = fs::recursive_directory_iterator(path, error); !error && entry != fs::end(entry);
       entry.increment(error)) {
    if (!canTakeFrom(entry->path().parent_path().string(), entry->path().string())) return false;
  }
  return !error;
}

}  // namespace dormel::freedesktop
