#include "platform/linux/DesktopWording.h"

#include "platform/Texts.h"

namespace dormel {
namespace {

/// How a desktop that lets no program lock it gives way to one that does, in English. No settings page of any desktop
/// has a switch for it.
std::string wayOut(const DesktopFacts& facts) {
  if (!facts.extensionAdvice.empty()) return facts.extensionAdvice;
  if (facts.isWayland && facts.isGnome) {
    return translatable(
        "Under Wayland, GNOME lets no program lock it. Log out, choose the session \"on Xorg\" at the login screen, "
        "and open Dormel again.");
  }
  if (facts.isWayland) {
    return translatable(
        "Under Wayland, it lets no program lock it. Log out, choose a session on X11 (\"Xorg\") at the login screen, "
        "and open Dormel again.");
  }
  if (facts.display == DisplayKind::x11) {
    return translatable("This X server is too old. Dormel needs one with XInput 2.2.");
  }
  return translatable("There is no display that could be locked.");
}

std::string extensionButton(const DesktopFacts& facts) {
  if (!facts.leadsToExtension) return {};
  return facts.isAllOrNothing ? translate("Switch All Extensions On") : translate("Switch the Extension On");
}

}  // namespace

std::string DesktopWording::computer() const { return translate("computer"); }

std::string DesktopWording::secondModifier() const { return translate("Ctrl"); }

PermissionWords DesktopWording::permission() const {
  const DesktopFacts facts = facts_();
  const std::string way = wayOut(facts);
  PermissionWords words;
  words.name = translate("Screen lock");
  words.need = translate("It needs a desktop that lets it hold the lock.");
  words.granted = translate("This desktop lets Dormel lock the screen.");
  if (facts.display == DisplayKind::extension && !facts.extensionAdvice.empty()) words.granted += " " + translate(way);
  words.missing = translate("This desktop doesn't let Dormel lock the screen.");
  words.advice = translate(way);
  words.remedy = "To fix: " + way;
  words.settingsButton = extensionButton(facts);
  if (facts.leadsToExtension) words.grantButton = translate("Switch On");
  return words;
}

PermissionCardWords DesktopWording::permissionCard() const {
  PermissionCardWords words;
  words.button = extensionButton(facts_());
  words.title = translate("Dormel can't lock this screen");
  words.text = translate("It is time to sleep, but this desktop doesn't let Dormel lock the screen.") + " " +
               translate(wayOut(facts_()));
  words.footer = translate("Dormel locks as soon as it can.");
  return words;
}

RecoveryWords DesktopWording::recovery(bool isSwitchedOff) const {
  if (!isSwitchedOff) {
    return {
        translate("Dormel isn't armed"),
        translate("Your session did not take Dormel's nightly start, so it will not lock at night. Log out and in "
                  "again, and open Dormel once more.\n\nIf that does not help, open it in a terminal: there it says "
                  "what went wrong."),
        ""};
  }
  const DesktopFacts facts = facts_();
  const std::string off = translate(
      "Dormel was switched off among the programs that start when you log in, so it will not lock at night. Only you "
      "can switch it on again.");
  if (facts.autostartPage.empty()) {
    return {translate("Dormel is switched off"),
            off + "\n\n" +
                translate("This desktop has no page for it that Dormel could open. Delete the file %1, and open Dormel "
                          "again.",
                          {facts.autostartFile}),
            ""};
  }
  return {translate("Dormel is switched off"),
          off + "\n\n" +
              translate("In the list, find \"Dormel\" and turn it back on. Then come back here, and Dormel re-arms "
                        "itself."),
          translate("Open %1", {facts.autostartPage})};
}

}  // namespace dormel
