// Words that are true on a Linux desktop: computed from what is there, asked for anew each time. Main thread only.
#pragma once

#include <functional>
#include <string>

#include "platform/Wording.h"
#include "platform/linux/DisplayChoice.h"

namespace dormel {

struct DesktopFacts {
  DisplayKind display = DisplayKind::none;
  bool isWayland = false;  ///< also where only its bridge for X programs answers
  bool isGnome = false;
  /// What the desktop calls its page of what starts at login, where that page can be opened; else empty.
  std::string autostartPage;
  /// The job's own entry there.
  std::string autostartFile;
  /// What GNOME Shell's extension still needs, or what is to be known of it, in English (translatable()); empty where
  /// it is of no use.
  std::string extensionAdvice{};
  /// Workspace::open of the permission's page goes some of that way.
  bool leadsToExtension = false;
  /// And switches on all other extensions with it.
  bool isAllOrNothing = false;
};

class DesktopWording : public Wording {
 public:
  explicit DesktopWording(std::function<DesktopFacts()> facts) : facts_(std::move(facts)) {}

  [[nodiscard]] std::string computer() const override;
  [[nodiscard]] std::string secondModifier() const override;
  [[nodiscard]] PermissionWords permission() const override;
  [[nodiscard]] PermissionCardWords permissionCard() const override;
  [[nodiscard]] RecoveryWords recovery(bool isSwitchedOff) const override;

 private:
  std::function<DesktopFacts()> facts_;
};

}  // namespace dormel
