#include "platform/linux/SessionWorkspace.h"

#include "platform/Texts.h"
#include "platform/linux/freedesktop/SettingsPages.h"
#include "platform/linux/gnome/ExtensionSwitch.h"
#include "platform/linux/gnome/Link.h"

namespace dormel {

bool SessionWorkspace::leadsToExtension(const std::string& address) const {
  return freedesktop::settingsPageAt(address) == freedesktop::SettingsPage::accessibility && gnome::isSession();
}

bool SessionWorkspace::open(const std::string& pathOrAddress) {
  return leadsToExtension(pathOrAddress) ? extension_.lead() : DesktopWorkspace::open(pathOrAddress);
}

std::string SessionWorkspace::adviceFor(const std::string& settingsAddress) const {
  std::string advice = leadsToExtension(settingsAddress) ? translate(gnome::advice(extension_.state())) : std::string();
  return advice.empty() ? DesktopWorkspace::adviceFor(settingsAddress) : advice;
}

void SessionWorkspace::forgetApplication() {
  extension_.remove();
  DesktopWorkspace::forgetApplication();
}

}  // namespace dormel
