// Where the login manager and the user manager know this user's graphical sessions.
#pragma once

#include <string>
#include <vector>

namespace dormel::jobs::systemd {

/// For each display the variables that lead to it: first the one that the desktop told the user manager of, then those
/// of the login sessions. Empty where neither answers, or nobody is logged in to a desktop.
[[nodiscard]] std::vector<std::vector<std::string>> sessionDisplays();

}  // namespace dormel::jobs::systemd
