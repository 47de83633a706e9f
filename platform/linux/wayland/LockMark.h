// The record of a session lock that is up, in the runtime folder: whose it is and at which compositor. A lock outlives
// its client, and only a client can end it: whoever finds the mark of one that died has to take the lock over.
// Any thread; nothing is remembered between calls. What cannot be read or written counts as absent.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace dormel::wayland {

/// A process, told from a later one of the same number by when it was started.
struct ProcessMark {
  pid_t pid = 0;
  unsigned long long startedAt = 0;  ///< clock ticks since boot; 0: not known
  friend bool operator==(const ProcessMark&, const ProcessMark&) = default;

  /// Nothing when there is no such process, or one that has ended and waits for its parent.
  [[nodiscard]] static std::optional<ProcessMark> of(pid_t pid);
  [[nodiscard]] bool isAlive() const { return of(pid) == *this; }
};

struct LockMark {
  ProcessMark owner;
  ProcessMark compositor;
  friend bool operator==(const LockMark&, const LockMark&) = default;

  [[nodiscard]] std::string text() const;
  [[nodiscard]] static std::optional<LockMark> parse(const std::string& text);

  [[nodiscard]] static std::optional<LockMark> read(const std::string& path);
  /// Whole or not at all. False when it could not be written.
  [[nodiscard]] bool write(const std::string& path) const;
};

/// The process behind the connected socket; nothing when the system does not tell.
[[nodiscard]] std::optional<ProcessMark> peerOf(int socket);

/// Whether the mark at `path` is of a lock at this compositor whose owner is gone. A mark of another compositor's lock,
/// which ended with it, is removed.
[[nodiscard]] bool hasAbandonedLock(const std::string& path, const std::optional<ProcessMark>& compositor);

}  // namespace dormel::wayland
