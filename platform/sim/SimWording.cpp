#include "platform/sim/SimWording.h"

namespace dormel {

PermissionWords SimWording::permission() const {
  if (other_ != nullptr) return other_->permission();
  PermissionWords words;
  words.name = "Accessibility";
  words.need = "It needs one permission to hold the lock.";
  words.granted = "Granted. Dormel can lock the screen.";
  words.missing = "Required. Dormel can't lock the screen.";
  words.settingsButton = "Open Settings";
  words.grantButton = "Grant";
  words.remedy = "To fix: System Settings → Privacy & Security → Accessibility → add/enable Dormel";
  return words;
}

PermissionCardWords SimWording::permissionCard() const {
  if (other_ != nullptr) return other_->permissionCard();
  return {"Dormel Requires Accessibility",
          "Your permissions got accidentally reset. Enable Accessibility in System Settings so Dormel can function "
          "properly.",
          "You may need to toggle it off and on again:", "Open Accessibility Settings",
          "Dormel will start when enabled."};
}

RecoveryWords SimWording::recovery(bool isSwitchedOff) const {
  if (other_ != nullptr) return other_->recovery(isSwitchedOff);
  return {
      "Dormel is switched off",
      "Dormel was turned off in System Settings → Login Items & Extensions, so it will not lock at night. macOS only "
      "lets you flip that switch yourself.\n\nIn the list, find \"Dormel\" and turn it back on — you may need to "
      "scroll down. Then come back here, and Dormel re-arms itself.",
      "Open Login Items"};
}

}  // namespace dormel
