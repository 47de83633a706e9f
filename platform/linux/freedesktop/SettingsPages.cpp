#include "platform/linux/freedesktop/SettingsPages.h"

#include <sstream>

namespace dormel::freedesktop {
namespace {

using Command = std::vector<std::string>;

struct Desktop {
  const char* name;
  std::vector<Command> accessibility;
  std::vector<Command> autostart;
};

const std::vector<Desktop>& desktops() {
  // GNOME's own settings have no page for what starts at login before its tweak tool, or its older session settings,
  // are installed; the page of applications comes nearest.
  static const std::vector<Desktop> table{
      {"GNOME",
       {{"gnome-control-center", "universal-access"}},
       {{"gnome-session-properties"}, {"gnome-tweaks"}, {"gnome-control-center", "applications"}}},
      {"Unity",
       {{"unity-control-center", "universal-access"}, {"gnome-control-center", "universal-access"}},
       {{"gnome-session-properties"}}},
      {"KDE",
       {{"systemsettings", "kcm_access"}, {"systemsettings5", "kcm_access"}, {"systemsettings"}},
       {{"systemsettings", "kcm_autostart"}, {"systemsettings5", "kcm_autostart"}, {"systemsettings"}}},
      {"XFCE", {{"xfce4-accessibility-settings"}, {"xfce4-settings-manager"}}, {{"xfce4-session-settings"}}},
      {"X-Cinnamon", {{"cinnamon-settings", "universal-access"}}, {{"cinnamon-settings", "startup"}}},
      {"MATE", {{"mate-at-properties"}, {"mate-control-center"}}, {{"mate-session-properties"}}},
      {"LXQt", {{"lxqt-config"}}, {{"lxqt-config-session"}, {"lxqt-config"}}},
      {"Budgie",
       {{"budgie-control-center", "universal-access"}, {"gnome-control-center", "universal-access"}},
       {{"budgie-desktop-settings"}, {"gnome-tweaks"}}},
      {"Pantheon", {{"xdg-open", "settings://universal-access"}}, {{"xdg-open", "settings://applications/startup"}}},
  };
  return table;
}

}  // namespace

std::vector<Command> settingsCommands(SettingsPage page, std::string_view currentDesktop) {
  std::vector<Command> commands;
  // A desktop that is built on another one names itself first: "Budgie:GNOME".
  std::istringstream names{std::string(currentDesktop)};
  for (std::string name; std::getline(names, name, ':');) {
    for (const Desktop& desktop : desktops()) {
      if (name != desktop.name) continue;
      const auto& found = page == SettingsPage::accessibility ? desktop.accessibility : desktop.autostart;
      commands.insert(commands.end(), found.begin(), found.end());
    }
  }
  return commands;
}

}  // namespace dormel::freedesktop
