#include "platform/linux/freedesktop/SettingsPages.h"

#include <algorithm>
#include <sstream>

#include "platform/Texts.h"

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
  std::vector<AutostartPage> autostart;
};

const std::vector<Desktop>& desktops() {
  // GNOME's own settings have no page for what starts at login; its tweak tool and its older session settings have. The
  // page of applications is where it says what a program may see and do.
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
       {{{"gnome-session-properties"}, "Startup Applications"}, {{"gnome-tweaks"}, "Tweaks"}}},
      {"Unity",
       {"unity-control-center"},
       {{"unity-control-center", "universal-access"}, {"gnome-control-center", "universal-access"}},
       {},
       {},
       {{{"gnome-session-properties"}, "Startup Applications"}}},
      {"KDE",
       {"systemsettings", "systemsettings5", "org.kde.systemsettings"},
       {{"systemsettings", "kcm_access"}, {"systemsettings5", "kcm_access"}, {"systemsettings"}},
       kdePermissions,
       kdePermissions,
       {{{"systemsettings", "kcm_autostart"}, "Autostart"}, {{"systemsettings5", "kcm_autostart"}, "Autostart"}}},
      {"XFCE",
       {"xfce4-settings-manager", "xfce4-accessibility-settings", "xfce4-session-settings"},
       {{"xfce4-accessibility-settings"}, {"xfce4-settings-manager"}},
       {},
       {},
       {{{"xfce4-session-settings"}, "Session and Startup"}}},
      {"X-Cinnamon",
       {"cinnamon-settings", "cinnamon-settings.py"},
       {{"cinnamon-settings", "universal-access"}},
       {},
       {{"cinnamon-settings", "applications"}},
       {{{"cinnamon-settings", "startup"}, "Startup Applications"}}},
      {"MATE",
       {"mate-control-center", "mate-at-properties", "mate-session-properties"},
       {{"mate-at-properties"}, {"mate-control-center"}},
       {},
       {},
       {{{"mate-session-properties"}, "Startup Applications"}}},
      {"LXQt",
       {"lxqt-config", "lxqt-config-session"},
       {{"lxqt-config"}},
       {},
       {},
       {{{"lxqt-config-session"}, "Session Settings"}, {{"lxqt-config"}, "Configuration Center"}}},
      {"Budgie",
       {"budgie-control-center", "budgie-desktop-settings"},
       {{"budgie-control-center", "universal-access"}, {"gnome-control-center", "universal-access"}},
       {{"budgie-control-center", "applications"}},
       {{"budgie-control-center", "applications"}},
       {{{"budgie-desktop-settings"}, "Budgie Desktop Settings"}, {{"gnome-tweaks"}, "Tweaks"}}},
      {"Pantheon",
       {"io.elementary.switchboard", "io.elementary.settings", "switchboard"},
       {{"xdg-open", "settings://universal-access"}},
       {{"xdg-open", "settings://privacy"}},
       {{"xdg-open", "settings://applications/permissions"}},
       {{{"xdg-open", "settings://applications/startup"}, "Startup"}}},
  };
  return table;
}

Commands commandsOf(const Desktop& desktop, SettingsPage page) {
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
  Commands commands;
  for (const AutostartPage& autostart : desktop.autostart) commands.push_back(autostart.command);
  return commands;
}

/// The desktops that `currentDesktop` names. One that is built on another one names itself first: "Budgie:GNOME".
std::vector<const Desktop*> desktopsOf(std::string_view currentDesktop) {
  std::vector<const Desktop*> found;
  std::istringstream names{std::string(currentDesktop)};
  for (std::string name; std::getline(names, name, ':');) {
    for (const Desktop& desktop : desktops()) {
      if (name == desktop.name) found.push_back(&desktop);
    }
  }
  return found;
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
  for (const Desktop* desktop : desktopsOf(currentDesktop)) {
    const Commands found = commandsOf(*desktop, page);
    commands.insert(commands.end(), found.begin(), found.end());
  }
  return commands;
}

std::vector<AutostartPage> autostartPages(std::string_view currentDesktop) {
  std::vector<AutostartPage> pages;
  for (const Desktop* desktop : desktopsOf(currentDesktop)) {
    pages.insert(pages.end(), desktop->autostart.begin(), desktop->autostart.end());
  }
  return pages;
}

bool namesDesktop(std::string_view currentDesktop, std::string_view name) {
  const auto found = desktopsOf(currentDesktop);
  return std::any_of(found.begin(), found.end(), [name](const Desktop* desktop) { return name == desktop->name; });
}

std::string settingsAdvice(SettingsPage page) {
  switch (page) {
    case SettingsPage::accessibility:
      return translate(
          "Dormel does not know the settings of this desktop. Open them yourself, and look for what programs may do "
          "with the keyboard; it often goes by Accessibility or Privacy.");
    case SettingsPage::screenRecording:
      return translate(
          "Dormel does not know the settings of this desktop. Open them yourself, and look for which programs may see "
          "the screen; it often goes by Privacy.");
    case SettingsPage::appManagement:
      return translate(
          "Dormel does not know the settings of this desktop. Open them yourself, and look for what the installed "
          "programs may do; it often goes by Applications.");
    case SettingsPage::autostart:
      break;
  }
  return translate(
      "Dormel does not know the settings of this desktop. Open them yourself, and look for what starts when you log "
      "in, and switch Dormel on there.");
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
