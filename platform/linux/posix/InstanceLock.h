// The one place that opened programs of a login session have. Whoever finds it taken tells its holder and goes.
#pragma once

#include <functional>
#include <string>

#include "platform/RunLoop.h"
#include "platform/linux/posix/FileDescriptor.h"

namespace dormel::posix {

/// The place is a named pipe: a lock on it makes it ours and goes with the process however that ends, and a byte sent
/// through it tells its holder. Nothing about it can go stale, and nothing here waits. Main thread.
class InstanceLock {
 public:
  using WatchReadable = std::function<void(int fd, std::function<bool()> action)>;

  explicit InstanceLock(std::string path) : path_(std::move(path)) {}

  /// True when this process has the lock until it ends; `onReopen` then runs on the main thread whenever another one
  /// asked for it. False when another process has it and was told. Where no pipe can be made everybody gets the lock:
  /// two windows are better than none.
  bool claim(const WatchReadable& watchReadable, Task onReopen);

 private:
  std::string path_;
  FileDescriptor pipe_;
};

}  // namespace dormel::posix
