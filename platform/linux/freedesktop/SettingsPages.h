// The pages of the desktops' own settings programs that a user of ours may have to visit.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace dormel::freedesktop {

enum class SettingsPage {
  accessibility,  ///< what programs may do with the keyboard, as near as this desktop comes to it
  autostart,      ///< which programs start at login
};

/// The command lines that open the page on the desktop that `currentDesktop` (XDG_CURRENT_DESKTOP, a list separated by
/// colons) names, the best first; which of them are installed is for the caller to see. None for a desktop that we
/// know no settings program of.
[[nodiscard]] std::vector<std::vector<std::string>> settingsCommands(SettingsPage page,
                                                                     std::string_view currentDesktop);

}  // namespace dormel::freedesktop
