// The real desktop: every service of platform/, put together for one process. Main thread.
#pragma once

#include <memory>

#include "platform/Platform.h"
#include "platform/Windows.h"
#include "platform/linux/qt/QmlSceneRegistry.h"

namespace dormel {

/// What a process will show.
enum class LaunchKind {
  command,     ///< nothing: it prints and exits without an event loop, and the toolkit stays out of it
  background,  ///< panels or nothing: the toolkit only draws, and works without a display
  windows,     ///< ordinary windows and alerts, on the desktop's own Qt platform
};

class LinuxPlatform {
 public:
  /// Connects to the display, if there is one; shows nothing. `scenes` says how views are drawn. Windows need a
  /// desktop, see `hasDesktop`.
  LinuxPlatform(LaunchKind kind, QmlSceneRegistry scenes);
  LinuxPlatform(const LinuxPlatform&) = delete;
  LinuxPlatform& operator=(const LinuxPlatform&) = delete;
  ~LinuxPlatform();

  /// Whether there is a display that windows can be opened on. May be asked before anything else.
  [[nodiscard]] static bool hasDesktop();

  [[nodiscard]] Platform& services();

  /// Tells the delegate that the launch is finished and runs the event loop. The process ends by an explicit exit.
  [[noreturn]] void run(ApplicationDelegate& delegate);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace dormel
