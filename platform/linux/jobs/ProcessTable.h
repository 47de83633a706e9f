// What the kernel tells about processes.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>

namespace dormel::jobs {

/// Ticks from the machine's start to the process's: with the id, it names one process and no later one.
[[nodiscard]] std::optional<std::uint64_t> processStartTicks(pid_t process);

/// Whether `ancestor` is the parent of `process`, or its parent's parent, and so on.
[[nodiscard]] bool descendsFrom(pid_t process, pid_t ancestor);

}  // namespace dormel::jobs
