// What a kind of display offers of the platform's services. One family is in force in a process, chosen once from what
// is there (DisplayChoice.h). Main thread only, but for `restoreAtExit`.
#pragma once

#include "platform/Accessibility.h"
#include "platform/Keyboard.h"
#include "platform/Screens.h"
#include "platform/Windows.h"

namespace dormel {

class DisplayFamily {
 public:
  virtual ~DisplayFamily() = default;

  /// Called when the display is gone, and nothing shows any more and nothing will; and when a lockdown has lost what
  /// takes the keyboard. Where one follows the other, for each.
  virtual void setOnLost(Task onLost) = 0;
  virtual void setOnScreensChanged(Task onChange) = 0;

  [[nodiscard]] virtual Accessibility& accessibility() = 0;
  [[nodiscard]] virtual EventTaps& eventTaps() = 0;
  [[nodiscard]] virtual HardwareKeys& hardwareKeys() = 0;
  [[nodiscard]] virtual InputIdle& inputIdle() = 0;
  [[nodiscard]] virtual KeyboardLayout& keyboardLayout() = 0;
  [[nodiscard]] virtual Screens& screens() = 0;
  [[nodiscard]] virtual WindowServer& windows() = 0;

  /// On for any presentation options, off for none.
  virtual void setLockdown(bool on) = 0;
  /// Gives back what must not be left behind by a process that ends without coming back to the main loop; to be
  /// called right before it exits. `comesBack`: it will be started again, and what it covers may stay covered. Takes
  /// half a second at most, whatever the display does. Any thread.
  virtual void restoreAtExit(bool comesBack) = 0;
};

}  // namespace dormel
