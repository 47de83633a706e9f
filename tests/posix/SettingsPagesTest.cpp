#include <gtest/gtest.h>

#include "platform/linux/freedesktop/SettingsPages.h"

namespace dormel::freedesktop {
namespace {

TEST(SettingsPages, AddressesLeadToTheNearestPage) {
  const std::string privacy = "x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension?";
  const struct {
    std::string address;
    const char* desktop;
    std::string command;  // the first; empty for none
  } rows[] = {
      {privacy + "Privacy_Accessibility", "ubuntu:GNOME", "gnome-control-center universal-access"},
      {privacy + "Privacy_ScreenCapture", "GNOME", "gnome-control-center applications"},
      {privacy + "Privacy_AppBundles", "KDE", "systemsettings kcm_app-permissions"},
      {privacy + "Privacy_ScreenCapture", "XFCE", ""},
      {privacy + "Privacy_AppBundles", "Budgie:GNOME", "budgie-control-center applications"},
      {"x-apple.systempreferences:com.apple.LoginItems-Settings.extension", "XFCE", "xfce4-session-settings"},
  };
  for (const auto& row : rows) {
    const auto page = settingsPageAt(row.address);
    ASSERT_TRUE(page) << row.address;
    std::string first;
    const auto commands = settingsCommands(*page, row.desktop);
    if (!commands.empty()) {
      for (const std::string& word : commands.front()) first += (first.empty() ? "" : " ") + word;
    }
    EXPECT_EQ(first, row.command) << row.address << ' ' << row.desktop;
  }
  EXPECT_FALSE(settingsPageAt(privacy + "Privacy_Camera"));
  EXPECT_FALSE(settingsPageAt("https://example.com/?Privacy_Accessibility"));
}

TEST(SettingsPages, WindowsOfSettingsPrograms) {
  for (const char* name : {"org.gnome.Settings", "Gnome-control-center", "systemsettings", "Xfce4-settings-manager",
                           "cinnamon-settings universal-access"}) {
    EXPECT_TRUE(isSettingsProgram(name)) << name;
  }
  for (const char* name : {"", "gnome", "gnome-control-center-2", "Dormel"})
    EXPECT_FALSE(isSettingsProgram(name)) << name;
}

}  // namespace
}  // namespace dormel::freedesktop
