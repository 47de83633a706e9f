#include "platform/linux/freedesktop/Trash.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <ctime>
#include <filesystem>
#include <optional>
#include <system_error>

#include "platform/PercentEncoding.h"
#include "platform/linux/freedesktop/BaseDirectories.h"
#include "platform/linux/freedesktop/MountTable.h"
#include "platform/linux/freedesktop/TextFile.h"
#include "platform/linux/freedesktop/Tree.h"
#include "platform/linux/posix/FileDescriptor.h"
#include "platform/linux/posix/PosixFiles.h"

namespace dormel::freedesktop {
namespace fs = std::filesystem;
namespace {

struct TrashCan {
  std::string folder;
  std::string original;  ///< what its record calls the file: absolute at home, below the mount point elsewhere
};

bool isOwnFolder(const std::string& path) {
  struct stat info {};
  return ::lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode) && info.st_uid == ::geteuid();
}

bool onOneDisk(const std::string& a, const std::string& b) {
  struct stat first {};
  struct stat second {};
  return ::stat(a.c_str(), &first) == 0 && ::stat(b.c_str(), &second) == 0 && first.st_dev == second.st_dev;
}

TrashCan homeTrash(const std::string& path) { return {dataHome() + "/Trash", path}; }

/// The trash at the top of the disk that the file lies on: the administrator's, with a folder for each user, or one of
/// this user's own.
std::optional<TrashCan> diskTrash(const std::string& path) {
  const auto mount = mountOf(path);
  if (!mount) return {};
  const std::string top = mount->point == "/" ? "" : mount->point;
  const std::string user = std::to_string(::geteuid());
  std::string can = top + "/.Trash-" + user;
  struct stat shared {};
  if (::lstat((top + "/.Trash").c_str(), &shared) == 0 && S_ISDIR(shared.st_mode) && (shared.st_mode & S_ISVTX) != 0 &&
      (::mkdir((top + "/.Trash/" + user).c_str(), 0700) == 0 || errno == EEXIST)) {
    can = top + "/.Trash/" + user;
  } else if (::mkdir(can.c_str(), 0700) != 0 && errno != EEXIST) {
    return {};
  }
  if (!isOwnFolder(can)) return {};
  return TrashCan{can, path.substr(top.size() + 1)};
}

std::string record(const std::string& original) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &local);
  return "[Trash Info]\nPath=" + percentEncoded(original) + "\nDeletionDate=" + text.data() + "\n";
}

FileResult moveOrCopy(posix::PosixChildProcesses& children, const std::string& from, const std::string& to) {
  if (::rename(from.c_str(), to.c_str()) == 0) return {};
  if (errno != EXDEV) return posix::lastError();
  if (!isTreeDeletable(from)) return FileError{std::generic_category().message(EACCES)};
  if (auto error = copyTree(children, from, to)) return error;
  return posix::removeTree(from);
}

FileResult put(posix::PosixChildProcesses& children, const std::string& path, const TrashCan& can,
               std::optional<Trashed>* what) {
  for (const char* part : {"", "/info", "/files"}) {
    if (auto error = createFolders(can.folder + part, 0700)) return error;
  }
  const fs::path name = fs::path(path).filename();
  for (int n = 1; n < 10000; ++n) {
    const std::string number = n == 1 ? "" : " " + std::to_string(n);
    const std::string taken = name.stem().string() + number + name.extension().string();
    const std::string info = can.folder + "/info/" + taken + ".trashinfo";
    const std::string place = can.folder + "/files/" + taken;
    // Creating the record is what reserves the name.
    const posix::FileDescriptor file(::open(info.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!file.valid() && errno != EEXIST) return posix::lastError();
    if (!file.valid()) continue;
    FileResult result;
    const std::string text = record(can.original);
    if (fs::exists(fs::symlink_status(place))) {  // left there without a record; the name is not free
      ::unlink(info.c_str());
      continue;
    }
    if (::write(file.get(), text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
      result = posix::lastError();
    } else {
      result = moveOrCopy(children, path, place);
    }
    if (result) {
      ::unlink(info.c_str());
    } else if (what != nullptr) {
      *what = Trashed{path, place, info};
    }
    return result;
  }
  return FileError{std::generic_category().message(EEXIST)};
}

}  // namespace

FileResult moveToTrash(posix::PosixChildProcesses& children, const std::string& path, std::optional<Trashed>* what) {
  std::error_code error;
  // The folder resolved, but not a link that the path itself may be.
  const fs::path folder = fs::canonical(fs::path(path).parent_path(), error);
  if (error) return FileError{error.message()};
  const std::string resolved = (folder / fs::path(path).filename()).string();
  if (!fs::exists(fs::symlink_status(resolved, error))) return FileError{std::generic_category().message(ENOENT)};

  const TrashCan home = homeTrash(resolved);
  if (auto failed = createFolders(home.folder, 0700)) return failed;
  if (!onOneDisk(folder.string(), home.folder)) {
    if (const auto disk = diskTrash(resolved); disk && !put(children, resolved, *disk, what)) return {};
  }
  return put(children, resolved, home, what);
}

void putBack(posix::PosixChildProcesses& children, const Trashed& what) {
  if (!moveOrCopy(children, what.place, what.original)) ::unlink(what.record.c_str());
}

}  // namespace dormel::freedesktop
