// The real desktop: every service of platform/, put together for one process. Main thread.
#pragma once

#include <memory>

#include "platform/Platform.h"
#include "platform/Windows.h"
#include "platform/linux/qt/QmlSceneRegistry.h"

namespace dormel {

class LinuxPlatform {
 public:
  /// Connects to the display, if there is one; shows nothing. `scenes` says how views are drawn. The arguments are
  /// the process's and outlive this object.
  LinuxPlatform(int& argc, char** argv, QmlSceneRegistry scenes);
  LinuxPlatform(const LinuxPlatform&) = delete;
  LinuxPlatform& operator=(const LinuxPlatform&) = delete;
  ~LinuxPlatform();

  [[nodiscard]] Platform& services();

  /// Tells the delegate that the launch is finished and runs the event loop. The process ends by an explicit exit.
  [[noreturn]] void run(ApplicationDelegate& delegate);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace dormel
