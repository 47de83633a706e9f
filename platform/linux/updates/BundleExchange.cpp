#include "platform/linux/updates/BundleExchange.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "platform/linux/posix/FileDescriptor.h"
#include "platform/linux/posix/PosixFiles.h"

namespace dormel::updates {
namespace {

std::string parent(const std::string& path) { return path.substr(0, path.rfind('/')); }

posix::FileDescriptor openFolder(const std::string& path) {
  return posix::FileDescriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

}  // namespace

FileResult exchangeBundles(const std::string& fresh, const std::string& bundle, const std::string& aside) {
  // The new one with all it holds first: a power cut must not leave empty files in the program's place.
  if (const auto disk = openFolder(fresh); !disk.valid() || ::syncfs(disk.get()) != 0) return posix::lastError();
  if (::renameat2(AT_FDCWD, fresh.c_str(), AT_FDCWD, bundle.c_str(), RENAME_EXCHANGE) != 0) {
    if (errno != EINVAL && errno != ENOSYS) return posix::lastError();
    if (::rename(bundle.c_str(), aside.c_str()) != 0) return posix::lastError();
    if (::rename(fresh.c_str(), bundle.c_str()) != 0) {
      const FileError error = posix::lastError();
      repairExchange(bundle, aside);
      return error;
    }
  }
  for (const std::string& path : {parent(bundle), parent(fresh)}) {
    if (const auto folder = openFolder(path); folder.valid()) ::fsync(folder.get());
  }
  return {};
}

void repairExchange(const std::string& bundle, const std::string& aside) {
  if (::access(bundle.c_str(), F_OK) != 0 && errno == ENOENT) {
    static_cast<void>(::renameat2(AT_FDCWD, aside.c_str(), AT_FDCWD, bundle.c_str(), 0));
  }
}

}  // namespace dormel::updates
