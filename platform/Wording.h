// The words that depend on the desktop: what a machine is called there, what the permission to take the keyboard goes
// by, and which switch gives it. A text here is ready to be shown. They may change with the desktop's state, so they
// are asked for whenever they are shown. Main thread only.
#pragma once

#include <string>

namespace dormel {

/// The permission, for the settings and for the first run.
struct PermissionWords {
  std::string name;     ///< "Accessibility"
  std::string need;     ///< why the first run speaks of it
  std::string granted;  ///< one sentence each
  std::string missing;
  /// What to do to get it; empty where a button says it all.
  std::string advice;
  /// The buttons that lead to it, in the settings and, short, in the first run. Both are empty where there is nothing
  /// to open: then there is no button.
  std::string settingsButton;
  std::string grantButton;
  /// What the log says about a night without it: data, the same in every language.
  std::string remedy;
};

/// The card of a night without the permission.
struct PermissionCardWords {
  std::string title;
  std::string text;
  /// Above a picture of the switch that has to be flipped; empty where there is no such switch to show.
  std::string switchHint;
  std::string button;  ///< empty where there is nothing to open
  std::string footer;
  friend bool operator==(const PermissionCardWords&, const PermissionCardWords&) = default;
};

/// Why the nightly job cannot be armed, and what to do about it.
struct RecoveryWords {
  std::string title;
  std::string text;
  std::string button;  ///< opens LoginItems::openSettings; empty where there is nothing to open
};

class Wording {
 public:
  virtual ~Wording() = default;

  /// What people call the machine: "Your … locks at your bedtime."
  [[nodiscard]] virtual std::string computer() const = 0;
  /// What the key beside Shift shows in the picture of a challenge; one sign, or a short word.
  [[nodiscard]] virtual std::string secondModifier() const = 0;
  [[nodiscard]] virtual PermissionWords permission() const = 0;
  [[nodiscard]] virtual PermissionCardWords permissionCard() const = 0;
  /// `isSwitchedOff`: the user did it, in the desktop's own settings. Otherwise the scheduler did not take the job.
  [[nodiscard]] virtual RecoveryWords recovery(bool isSwitchedOff) const = 0;
};

}  // namespace dormel
