// The variables by which programs find the graphical session that they belong to.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

namespace dormel::jobs {

/// Those that this process has, each as "NAME=value"; and, when they name a display, the name alone of each
/// variable for displays that this session does not have: a program started for it must not have it either.
[[nodiscard]] std::vector<std::string> sessionEnvironment();

/// Whether a program with the environment `ours` has any display to show itself on, and one on this machine.
[[nodiscard]] bool namesDisplay(const std::vector<std::string>& ours);
[[nodiscard]] bool namesLocalDisplay(const std::vector<std::string>& ours);

/// The value in an environment; empty when it is not there.
[[nodiscard]] std::string valueIn(const std::vector<std::string>& environment, std::string_view name);

/// Whether `theirs` leads to another display than `ours`, and `ours` is the better one. It is not when it names none,
/// or one on another machine (`ssh -X`) while theirs is on this one.
[[nodiscard]] bool namesAnotherDisplay(const std::vector<std::string>& theirs, const std::vector<std::string>& ours);
/// The same for the environment of a process; false when it has just ended.
[[nodiscard]] bool runsOnAnotherDisplay(pid_t process, const std::vector<std::string>& ours);

/// `ours` with the display of `theirs`, where `ours` names none or one on another machine: whoever loads a job anew
/// from a terminal or by `ssh -X` has nothing to say about where it shows itself.
[[nodiscard]] std::vector<std::string> keepingDisplay(std::vector<std::string> ours,
                                                      const std::vector<std::string>& theirs);

/// The environment that a process was started with; empty when it is gone or another user's.
[[nodiscard]] std::vector<std::string> environmentOf(pid_t process);

/// Sets "NAME=value" and unsets "NAME" in this process.
void adoptSessionEnvironment(const std::vector<std::string>& changes);

/// The variables for displays among `environment`, and the bare names of those that are not.
[[nodiscard]] std::vector<std::string> displayVariables(const std::vector<std::string>& environment);

}  // namespace dormel::jobs
