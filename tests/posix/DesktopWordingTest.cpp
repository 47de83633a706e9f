#include "platform/linux/DesktopWording.h"

#include <gtest/gtest.h>

namespace dormel {
namespace {

std::vector<std::string> allTexts(const Wording& wording) {
  const PermissionWords permission = wording.permission();
  const PermissionCardWords card = wording.permissionCard();
  std::vector<std::string> texts{wording.computer(),
                                 wording.secondModifier(),
                                 permission.name,
                                 permission.need,
                                 permission.granted,
                                 permission.missing,
                                 permission.advice,
                                 permission.settingsButton,
                                 permission.grantButton,
                                 permission.remedy,
                                 card.title,
                                 card.text,
                                 card.switchHint,
                                 card.button,
                                 card.footer};
  for (const bool isSwitchedOff : {false, true}) {
    const RecoveryWords recovery = wording.recovery(isSwitchedOff);
    texts.insert(texts.end(), {recovery.title, recovery.text, recovery.button});
  }
  return texts;
}

TEST(DesktopWording, LeadsToTheRightSwitchAndNamesNoOtherDesktop) {
  const struct {
    const char* name;
    DesktopFacts facts;
    const char* way;   // to the permission
    const char* back;  // to being armed again, once switched off
    const char* button;
  } rows[] = {
      {"X11, Xfce",
       {DisplayKind::x11, false, false, "Session and Startup", "/f"},
       "XInput 2.2",
       "In the list",
       "Open Session and Startup"},
      {"sway", {DisplayKind::sessionLock, true, false, "", "/f"}, "on X11", "Delete the file /f", ""},
      {"a compositor that offers none", {DisplayKind::none, true, false, "", "/f"}, "on X11", "Delete the file /f", ""},
      {"its bridge", {DisplayKind::x11, true, false, "", "/f"}, "on X11", "Delete the file /f", ""},
      {"GNOME", {DisplayKind::x11, true, true, "Tweaks", "/f"}, "\"on Xorg\"", "In the list", "Open Tweaks"},
      {"GNOME's extension",
       {DisplayKind::x11, true, true, "", "/f", "Log out once.", true},
       "Log out once.",
       "Delete the file /f",
       ""},
      {"all of GNOME's extensions",
       {DisplayKind::x11, true, true, "", "/f", "All are off.", true, true},
       "All are off.",
       "Delete the file /f",
       ""},
      {"nothing", {DisplayKind::none, false, false, "", "/f"}, "no display", "Delete the file /f", ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const DesktopWording wording([&] { return row.facts; });
    for (const std::string& text : allTexts(wording)) {
      for (const char* foreign : {"Mac", "mac", "System Settings", "Login Items", "Accessibility", "Privacy", "⌘"}) {
        EXPECT_EQ(text.find(foreign), std::string::npos) << text;
      }
    }
    const PermissionWords permission = wording.permission();
    const PermissionCardWords card = wording.permissionCard();
    for (const std::string& text : {permission.advice, permission.remedy, card.text}) {
      EXPECT_NE(text.find(row.way), std::string::npos) << text;
    }
    EXPECT_EQ(card.switchHint, "");
    EXPECT_EQ(!card.button.empty(), row.facts.leadsToExtension);
    EXPECT_EQ(card.button.find("All") != std::string::npos, row.facts.isAllOrNothing) << "what it does is said on it";
    EXPECT_EQ(permission.settingsButton, card.button);
    EXPECT_EQ(!permission.grantButton.empty(), row.facts.leadsToExtension);
    const RecoveryWords off = wording.recovery(true);
    EXPECT_NE(off.text.find(row.back), std::string::npos) << off.text;
    EXPECT_EQ(off.button, row.button);
    EXPECT_EQ(wording.recovery(false).button, "");
    EXPECT_EQ(wording.recovery(false).text.find("switched off"), std::string::npos);
  }
}

TEST(DesktopWording, TellsOfAnExtensionThatWaitsForTheNextLogin) {
  DesktopFacts facts{DisplayKind::extension, true, true, "", "/f"};
  const DesktopWording wording([&] { return facts; });
  const std::string granted = wording.permission().granted;
  facts.extensionAdvice = "A newer one waits.";
  EXPECT_EQ(wording.permission().granted, granted + " A newer one waits.");
}

}  // namespace
}  // namespace dormel
