#include "platform/linux/freedesktop/SettingsPages.h"

#include <algorithm>
#include <sstream>

namespace dormel::freedesktop {
namespace {

using Command = std::vector<std::string>;
using Commands = std::vector<Command>;

struct Desktop {
  const char* name;
  std::vector<std::string> windows;  ///< what its settings programs call their windows
  Commands accessibility;
  Commands screenRecording;
  Commands appManagement;
  Commands autostart;
};

const std::vector<Desktop>& desktops() {
  // GNOME's own settings have no page for what starts at login before its tweak tool, or its older session settings,
  // are installed; the page of applications comes nearest. That is also where it says what a program may see and do.
  // KDE asks each time whether a program may see the screen, and remembers the answers for packaged programs only.
  static const Commands gnomeApplications{{"gnome-control-center", "applications"}};
  static const Commands kdePermissions{
      {"systemsettings", "kcm_app-permissions"}, {"systemsettings", "kcm_flatpak"}, {"systemsettings5", "kcm_flatpak"}};
  static const std::vector<Desktop> table{
      {"GNOME",
       {"gnome-control-center", "org.gnome.Settings", "gnome-session-properties", "gnome-tweaks", "org.gnome.tweaks"},
       {{"gnome-control-center", "universal-access"}},
       gnomeApplications,
       gnomeApplications,
       {{"gnome-session-properties"}, {"gnome-tweaks"}, {"gnome-control-center", "applications"}}},
      {"Unity",
       {"unity-control-center"},
       {{"unity-control-center", "universal-access"}, {"gnome-control-center", "universal-access"}},
       {},
       {},
       {{"gnome-session-properties"}}},
      {"KDE",
       {"systemsettings", "systemsettings5", "org.kde.systemsettings"},
       {{"systemsettings", "kcm_access"}, {"systemsettings5", "kcm_access"}, {"systemsettings"}},
       kdePermissions,
       kdePermissions,
       {{"systemsettings", "kcm_autostart"}, {"systemsettings5", "kcm_autostart"}, {"systemsettings"}}},
      {"XFCE",
       {"xfce4-settings-manager", "xfce4-accessibility-settings", "xfce4-session-settings"},
       {{"xfce4-accessibility-settings"}, {"xfce4-settings-manager"}},
       {},
       {},
       {{"xfce4-session-settings"}}},
      {"X-Cinnamon",
       {"cinnamon-settings", "cinnamon-settings.py"},
       {{"cinnamon-settings", "universal-access"}},
       {},
       {{"cinnamon-settings", "applications"}},
       {{"cinnamon-settings", "startup"}}},
      {"MATE",
       {"mate-control-center", "mate-at-properties", "mate-session-properties"},
       {{"mate-at-properties"}, {"mate-control-center"}},
       {},
       {},
       {{"mate-session-properties"}}},
      {"LXQt",
       {"lxqt-config", "lxqt-config-session"},
       {{"lxqt-config"}},
       {},
       {},
       {{"lxqt-config-session"}, {"lxqt-config"}}},
      {"Budgie",
       {"budgie-control-center", "budgie-desktop-settings"},
       {{"budgie-control-center", "universal-access"}, {"gnome-control-center", "universal-access"}},
       {{"budgie-control-center", "applications"}},
       {{"budgie-control-center", "applications"}},
       {{"budgie-desktop-settings"}, {"gnome-tweaks"}}},
      {"Pantheon",
       {"io.elementary.switchboard", "io.elementary.settings", "switchboard"},
       {{"xdg-open", "settings://universal-access"}},
       {{"xdg-open", "settings://privacy"}},
       {{"xdg-open", "settings://applications/permissions"}},
       {{"xdg-open", "settings://applications/startup"}}},
  };
  return table;
}

const Commands& commandsOf(const Desktop& desktop, SettingsPage page) {
  switch (page) {
    case SettingsPage::accessibility:
      return desktop.accessibility;
    case SettingsPage::screenRecording:
      return desktop.screenRecording;
    case SettingsPage::appManagement:
      return desktop.appManagement;
    case SettingsPage::autostart:
      break;
  }
  return desktop.autostart;
}

bool sameName(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](char x, char y) { return lower(x) == lower(y); });
}

}  // namespace

bool isSettingsAddress(std::string_view address) { return address.starts_with("x-apple.systempreferences:"); }

std::optional<SettingsPage> settingsPageAt(std::string_view address) {
  if (!isSettingsAddress(address)) return {};
  struct Ending {
    std::string_view text;
    SettingsPage page;
  };
  for (const Ending& ending : {Ending{"?Privacy_Accessibility", SettingsPage::accessibility},
                               {"?Privacy_ScreenCapture", SettingsPage::screenRecording},
                               {"?Privacy_AppBundles", SettingsPage::appManagement}}) {
    if (address.ends_with(ending.text)) return ending.page;
  }
  if (address.find("LoginItems") != std::string_view::npos) return SettingsPage::autostart;
  return {};
}

std::vector<Command> settingsCommands(SettingsPage page, std::string_view currentDesktop) {
  std::vector<Command> commands;
  // A desktop that is built on another one names itself first: "Budgie:GNOME".
  std::istringstream names{std::string(currentDesktop)};
  for (std::string name; std::getline(names, name, ':');) {
    for (const Desktop& desktop : desktops()) {
      if (name != desktop.name) continue;
      const Commands& found = commandsOf(desktop, page);
      commands.insert(commands.end(), found.begin(), found.end());
    }
  }
  return commands;
}

std::string settingsAdvice(SettingsPage page) {
  const std::string opening = "Dormel does not know the settings of this desktop. Open them yourself, and look for ";
  switch (page) {
    case SettingsPage::accessibility:
      return opening + "what programs may do with the keyboard; it often goes by Accessibility or Privacy.";
    case SettingsPage::screenRecording:
      return opening + "which programs may see the screen; it often goes by Privacy.";
    case SettingsPage::appManagement:
      return opening + "what the installed programs may do; it often goes by Applications.";
    case SettingsPage::autostart:
      break;
  }
  return opening + "what starts when you log in, and switch Dormel on there.";
}

bool isSettingsProgram(std::string_view windowName) {
  // Cinnamon's, opened on one page, has the page in its name: "cinnamon-settings universal-access".
  windowName = windowName.substr(0, windowName.find(' '));
  return std::any_of(desktops().begin(), desktops().end(), [&](const Desktop& desktop) {
    return std::any_of(desktop.windows.begin(), desktop.windows.end(),
                       [&](const std::string& name) { return sameName(name, windowName); });
  });
}

}  // namespace dormel::freedesktop
