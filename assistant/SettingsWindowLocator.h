// Finds the window of the desktop's settings program. Holds no state; every call looks afresh. Main thread only.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/Geometry.h"

namespace dormel {

/// One settings window as it was seen, in screen coordinates.
struct SettingsWindowSnapshot {
  std::int32_t pid = 0;
  Rect frame;
  Rect visibleFrame;  ///< of the screen that shows most of it
  friend bool operator==(const SettingsWindowSnapshot&, const SettingsWindowSnapshot&) = default;
};

struct SettingsWindowLocator {
  /// The largest window of the settings program, while that is the frontmost application; too small ones (a dialog, a
  /// tooltip) do not count.
  [[nodiscard]] static std::optional<SettingsWindowSnapshot> frontmostWindow();

  [[nodiscard]] static bool isSystemSettingsFrontmost();

  struct Placed {
    Rect frame;
    Rect visibleFrame;
    friend bool operator==(const Placed&, const Placed&) = default;
  };
  /// Bounds as the window server tells them, in screen coordinates, by the screen that shows most of them.
  [[nodiscard]] static Placed userInterfaceGeometry(const Rect& bounds);
};

}  // namespace dormel
