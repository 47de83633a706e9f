// Every service of platform/ that needs no toolkit, put together for one process. Main thread.
#pragma once

#include <memory>

#include "platform/Application.h"
#include "platform/Platform.h"
#include "platform/Windows.h"
#include "platform/common/Canvas.h"
#include "platform/linux/DesktopApplication.h"
#include "platform/linux/loop/EventLoop.h"
#include "platform/linux/posix/PosixProcess.h"
#include "platform/linux/x11/X11Platform.h"

namespace dormel {

/// What a process will show.
enum class LaunchKind {
  command,     ///< nothing: it prints and exits without an event loop
  background,  ///< panels or nothing, and it works without a display
  windows,     ///< ordinary windows and alerts, too
};

class LinuxServices {
 public:
  /// Connects to the display, if there is one; shows nothing.
  explicit LinuxServices(LaunchKind kind);
  LinuxServices(const LinuxServices&) = delete;
  LinuxServices& operator=(const LinuxServices&) = delete;
  ~LinuxServices();

  /// What depends on whether there is a toolkit. All of it outlives this.
  struct Shown {
    WindowServer& panels;
    Alerts& alerts;
    MainWindows& mainWindows;
    MainMenu& mainMenu;
    Dragging& dragging;
  };
  /// All services. Call it once.
  [[nodiscard]] Platform& with(const Shown& shown);

  [[nodiscard]] EventLoop& loop();
  /// The family of displays that is in force.
  [[nodiscard]] DisplayFamily& display();
  /// Null where another family of displays is in force.
  [[nodiscard]] x11::X11Platform* x11();
  [[nodiscard]] DesktopApplication& application();
  [[nodiscard]] posix::PosixProcess& process();

  /// Quit requests of terminals go to `delegate`, who is told from the loop that the launch is finished.
  void launch(ApplicationDelegate& delegate);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace dormel
