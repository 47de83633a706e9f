// The mark of a session lock as a file in the runtime folder, and the processes that it names.
// Any thread; nothing is remembered between calls. What cannot be read or written counts as absent.
#pragma once

#include <optional>
#include <string>

#include "platform/common/lock/LockMark.h"

namespace dormel::wayland {

/// Nothing when there is no such process, or one that has ended and waits for its parent.
[[nodiscard]] std::optional<ProcessMark> processOf(int pid);
[[nodiscard]] inline bool isAlive(const ProcessMark& process) { return processOf(process.pid) == process; }
/// The process behind the connected socket; nothing when the system does not tell.
[[nodiscard]] std::optional<ProcessMark> peerOf(int socket);

[[nodiscard]] std::optional<LockMark> readMark(const std::string& path);
/// Whole or not at all. False when it could not be written.
[[nodiscard]] bool writeMark(const LockMark& mark, const std::string& path);

/// Whether the mark at `path` is of a lock at this compositor whose owner is gone. A mark of another compositor's lock,
/// which ended with it, is removed.
[[nodiscard]] bool hasAbandonedLock(const std::string& path, const std::optional<ProcessMark>& compositor);

}  // namespace dormel::wayland
