// A small process that outlives this one while a session lock is up. Should the lock's owner die and nobody take the
// lock over within 10 s (the program was deleted, its job removed, its disk is gone), it ends the lock from memory, so
// that nobody is left behind a lock that no process on this machine can open.
#pragma once

#include <string>

#include "platform/linux/posix/FileDescriptor.h"

namespace dormel::wayland {

class LockWatcher {
 public:
  /// Forks it. `mark` is the path of the lock's mark, `display` as in $WAYLAND_DISPLAY. Where no process is to be had
  /// there is none, and `isThere` says so.
  LockWatcher(const std::string& mark, const std::string& display);
  LockWatcher(const LockWatcher&) = delete;
  LockWatcher& operator=(const LockWatcher&) = delete;
  /// Nothing is locked any more: it ends.
  ~LockWatcher();

  [[nodiscard]] bool isThere() const { return leash_.valid(); }

 private:
  posix::FileDescriptor leash_;
};

}  // namespace dormel::wayland
