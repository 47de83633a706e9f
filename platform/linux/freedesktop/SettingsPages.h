// The pages of the desktops' own settings programs that a user of ours may have to visit.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dormel::freedesktop {

enum class SettingsPage {
  accessibility,    ///< what programs may do with the keyboard, as near as this desktop comes to it
  screenRecording,  ///< which programs may see the screen
  appManagement,    ///< what the installed programs may do
  autostart,        ///< which programs start at login
};

[[nodiscard]] bool isSettingsAddress(std::string_view address);
/// The page that an address of a settings page ("x-apple.systempreferences:…") means; nothing for one that we do not
/// know, and for an address of anything else.
[[nodiscard]] std::optional<SettingsPage> settingsPageAt(std::string_view address);

/// The command lines that open the page on the desktop that `currentDesktop` (XDG_CURRENT_DESKTOP, a list separated by
/// colons) names, the best first; which of them are installed is for the caller to see. None for a desktop that we
/// know no settings program of.
[[nodiscard]] std::vector<std::vector<std::string>> settingsCommands(SettingsPage page,
                                                                     std::string_view currentDesktop);

/// The same for what starts at login, with what the page is called.
struct AutostartPage {
  std::vector<std::string> command;
  std::string name;
};
[[nodiscard]] std::vector<AutostartPage> autostartPages(std::string_view currentDesktop);

/// Whether that list names this desktop, of those that we know.
[[nodiscard]] bool namesDesktop(std::string_view currentDesktop, std::string_view name);

/// Where to look, in words for people, on a desktop that has no such page for us to open.
[[nodiscard]] std::string settingsAdvice(SettingsPage page);

/// Whether a window with that name in its WM_CLASS (or a program with that desktop id) is one of those settings
/// programs, on whichever desktop: some are used on several. Case does not count.
[[nodiscard]] bool isSettingsProgram(std::string_view windowName);

}  // namespace dormel::freedesktop
