// The desktop as the program sees it that locks, and that carries out commands: every service of platform/ but ordinary
// windows, which DormelWindow shows. No toolkit. Main thread.
#pragma once

#include <memory>

#include "platform/linux/LinuxServices.h"

namespace dormel {

class GuardPlatform {
 public:
  explicit GuardPlatform(LaunchKind kind);
  GuardPlatform(const GuardPlatform&) = delete;
  GuardPlatform& operator=(const GuardPlatform&) = delete;
  ~GuardPlatform();

  [[nodiscard]] Platform& services();

  /// Tells the delegate that the launch is finished and runs the main loop. The process ends by an explicit exit.
  [[noreturn]] void run(ApplicationDelegate& delegate);

 private:
  struct NoWindows;

  LinuxServices common_;
  std::unique_ptr<NoWindows> noWindows_;
  Platform& services_;
};

/// Turns this process into the program beside it that shows windows, with the same arguments. Returns only where that
/// fails, with what it would have started and why not, for the user.
[[nodiscard]] std::string becomeWindowProgram(char** arguments);

}  // namespace dormel
