#include "platform/linux/posix/InstanceLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <utility>

#include "platform/linux/posix/PosixFiles.h"

namespace dormel::posix {
namespace {

bool isPipe(int fd) {
  struct stat info {};
  return ::fstat(fd, &info) == 0 && S_ISFIFO(info.st_mode);
}

}  // namespace

bool InstanceLock::claim(const WatchReadable& watchReadable, Task onReopen) {
  for (int attempt = 0; attempt < 3; ++attempt) {
    if (::mkfifo(path_.c_str(), 0600) != 0 && errno != EEXIST) return true;
    // For both directions: it opens whether or not somebody is at the other end, and never reads as ended.
    FileDescriptor pipe(::open(path_.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW));
    if (!pipe.valid() || !isPipe(pipe.get())) {
      ::unlink(path_.c_str());  // not ours to begin with, or deleted just now
      continue;
    }
    if (::flock(pipe.get(), LOCK_EX | LOCK_NB) != 0) {
      if (errno != EWOULDBLOCK) return true;
      static_cast<void>(!::write(pipe.get(), "r", 1));
      return false;
    }
    if (!isAt(pipe.get(), path_)) continue;
    pipe_ = std::move(pipe);
    watchReadable(pipe_.get(), [fd = pipe_.get(), onReopen = std::move(onReopen)] {
      std::array<char, 64> calls{};
      if (::read(fd, calls.data(), calls.size()) > 0) onReopen();
      return true;
    });
    return true;
  }
  return true;
}

}  // namespace dormel::posix
