#include "platform/linux/freedesktop/AutostartLoginItems.h"

#include <unistd.h>

#include <filesystem>

#include "platform/Identifiers.h"
#include "platform/Texts.h"
#include "platform/linux/freedesktop/AutostartEntry.h"

namespace dormel::freedesktop {

LoginItemStatus AutostartLoginItems::status(const std::string& path) const {
  // A job's property list is named after its label, and so is its autostart entry.
  switch (AutostartEntry(std::filesystem::path(path).stem().string()).state()) {
    case AutostartEntry::Switch::on:
      return LoginItemStatus::enabled;
    case AutostartEntry::Switch::off:
      return LoginItemStatus::requiresApproval;
    case AutostartEntry::Switch::absent:
      break;
  }
  return ::access(path.c_str(), F_OK) == 0 ? LoginItemStatus::notRegistered : LoginItemStatus::notFound;
}

bool AutostartLoginItems::openSettings() { return opener_.openSettings(SettingsPage::autostart); }

std::string AutostartLoginItems::file() { return AutostartEntry(BUNDLE_IDENTIFIER).path(); }

std::string AutostartLoginItems::advice() const {
  return settingsAdvice(SettingsPage::autostart) + " " +
         translate("Where there is no such page, delete the file %1 and open Dormel again.", {file()});
}

}  // namespace dormel::freedesktop
