// The desktop as the program sees it that shows windows: every service of platform/, on Qt where it is about windows.
// Main thread.
#pragma once

#include <memory>

#include "platform/Application.h"
#include "platform/Platform.h"
#include "platform/linux/qt/QmlSceneRegistry.h"

namespace dormel {

class WindowPlatform {
 public:
  /// Connects to the desktop, see `hasDesktop`; shows nothing. `scenes` says how views are drawn.
  explicit WindowPlatform(QmlSceneRegistry scenes);
  WindowPlatform(const WindowPlatform&) = delete;
  WindowPlatform& operator=(const WindowPlatform&) = delete;
  ~WindowPlatform();

  /// Whether there is a display that windows can be opened on. May be asked before anything else.
  [[nodiscard]] static bool hasDesktop();

  [[nodiscard]] Platform& services();

  /// Tells the delegate that the launch is finished and runs the toolkit's loop. The process ends by an explicit exit.
  [[noreturn]] void run(ApplicationDelegate& delegate);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace dormel
