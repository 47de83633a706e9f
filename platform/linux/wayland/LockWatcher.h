// A small process that outlives this one while a session lock is up, and does what AbandonedLockPolicy decides: should
// the lock's owner die and nobody take the lock over (the program was deleted, its job removed, its disk is gone), it
// ends the lock from memory, so that nobody is left behind a lock that no process on this machine can open.
#pragma once

#include <optional>
#include <string>

#include "platform/common/lock/LockMark.h"
#include "platform/linux/posix/FileDescriptor.h"

namespace dormel::wayland {

class LockWatcher {
 public:
  struct Watched {
    std::string path;       ///< where the lock's mark is kept
    LockMark mark;          ///< this process and its compositor; numbers of 0 for what is not known
    bool isMarked = false;  ///< the mark could be written
    std::string display;    ///< as in $WAYLAND_DISPLAY
  };

  /// Forks it. Where no process is to be had there is none, and `isThere` says so.
  explicit LockWatcher(const Watched& watched);
  LockWatcher(const LockWatcher&) = delete;
  LockWatcher& operator=(const LockWatcher&) = delete;
  /// Nothing is locked any more: it ends.
  ~LockWatcher();

  [[nodiscard]] bool isThere() const { return leash_.valid(); }

 private:
  posix::FileDescriptor leash_;
};

}  // namespace dormel::wayland
