// The variables by which programs find the graphical session that they belong to.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace dormel::jobs {

/// Those that this process has, each as "NAME=value"; and, when they name a display, the name alone of each
/// variable for displays that this session does not have: a program started for it must not have it either.
[[nodiscard]] std::vector<std::string> sessionEnvironment();

/// Whether a program with the environment `ours` has any display to show itself on.
[[nodiscard]] bool namesDisplay(const std::vector<std::string>& ours);

/// Whether `process` was started for another display than the one that `ours` names. False when `ours` names
/// none: there is nothing better to move it to.
[[nodiscard]] bool runsOnAnotherDisplay(pid_t process, const std::vector<std::string>& ours);

/// Makes another process's session this one's: `changes` are what `sessionEnvironment` answered there.
void adoptSessionEnvironment(const std::vector<std::string>& changes);

}  // namespace dormel::jobs
