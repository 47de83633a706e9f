// Where the desktop keeps a user's files: the XDG base directories. Absolute paths without a trailing slash; a
// variable that is empty or not absolute counts as unset. Any thread, as long as nobody changes the environment.
#pragma once

#include <string>

namespace dormel::freedesktop {

/// $HOME, or else the home folder of the user database.
[[nodiscard]] std::string homeDirectory();
[[nodiscard]] std::string cacheHome();
[[nodiscard]] std::string configHome();
[[nodiscard]] std::string dataHome();
[[nodiscard]] std::string stateHome();
/// $XDG_RUNTIME_DIR, or else where the login manager would have put it.
[[nodiscard]] std::string runtimeDirectory();

}  // namespace dormel::freedesktop
