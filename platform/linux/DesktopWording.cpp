#include "platform/linux/DesktopWording.h"

namespace dormel {
namespace {

/// How a desktop that lets no program lock it gives way to one that does. No settings page of any desktop has a switch
/// for it.
std::string wayOut(const DesktopFacts& facts) {
  if (!facts.extensionAdvice.empty()) return facts.extensionAdvice;
  if (facts.isWayland && facts.isGnome) {
    return "Under Wayland, GNOME lets no program lock it. Log out, choose the session \"on Xorg\" at the login screen, "
           "and open Dormel again.";
  }
  if (facts.isWayland) {
    return "Under Wayland, it lets no program lock it. Log out, choose a session on X11 (\"Xorg\") at the login "
           "screen, "
           "and open Dormel again.";
  }
  if (facts.display == DisplayKind::x11) return "This X server is too old. Dormel needs one with XInput 2.2.";
  return "There is no display that could be locked.";
}

}  // namespace

std::string DesktopWording::computer() const { return "computer"; }

std::string DesktopWording::secondModifier() const { return "Ctrl"; }

PermissionWords DesktopWording::permission() const {
  PermissionWords words;
  words.name = "Screen lock";
  words.need = "It needs a desktop that lets it hold the lock.";
  words.granted = "This desktop lets Dormel lock the screen.";
  words.missing = "This desktop doesn't let Dormel lock the screen.";
  words.advice = wayOut(facts_());
  words.remedy = "To fix: " + wayOut(facts_());
  if (facts_().leadsToExtension) {
    words.settingsButton = "Switch the Extension On";
    words.grantButton = "Switch On";
  }
  return words;
}

PermissionCardWords DesktopWording::permissionCard() const {
  PermissionCardWords words;
  if (facts_().leadsToExtension) words.button = "Switch the Extension On";
  words.title = "Dormel can't lock this screen";
  words.text = "It is time to sleep, but this desktop doesn't let Dormel lock the screen. " + wayOut(facts_());
  words.footer = "Dormel locks as soon as it can.";
  return words;
}

RecoveryWords DesktopWording::recovery(bool isSwitchedOff) const {
  if (!isSwitchedOff) {
    return {"Dormel isn't armed",
            "Your session did not take Dormel's nightly start, so it will not lock at night. Log out and in again, and "
            "open Dormel once more.\n\nIf that does not help, open it in a terminal: there it says what went wrong.",
            ""};
  }
  const DesktopFacts facts = facts_();
  const std::string off =
      "Dormel was switched off among the programs that start when you log in, so it will not lock at night. Only you "
      "can switch it on again.\n\n";
  if (facts.autostartPage.empty()) {
    return {"Dormel is switched off",
            off + "This desktop has no page for it that Dormel could open. Delete the file " + facts.autostartFile +
                ", and open Dormel again.",
            ""};
  }
  return {"Dormel is switched off",
          off + "In the list, find \"Dormel\" and turn it back on. Then come back here, and Dormel re-arms itself.",
          "Open " + facts.autostartPage};
}

}  // namespace dormel
