// How its user wants a desktop to look, as the settings portal tells every program. Asked once, when windows are about
// to be made; any thread.
#pragma once

namespace dormel::freedesktop {

struct DesktopLook {
  bool highContrast = false;
  bool reducedMotion = false;
};

/// All false where nobody answers within a moment; a portal that does not run is not started for it.
[[nodiscard]] DesktopLook desktopLook();

}  // namespace dormel::freedesktop
