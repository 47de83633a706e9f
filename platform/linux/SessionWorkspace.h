// The desktop's services, with the way to GNOME Shell's extension in the place of a settings page. Main thread only.
#pragma once

#include "platform/linux/freedesktop/DesktopWorkspace.h"

namespace dormel {

namespace gnome {
class ExtensionSwitch;
}

class SessionWorkspace final : public freedesktop::DesktopWorkspace {
 public:
  /// All outlive this object.
  SessionWorkspace(posix::PosixChildProcesses& children, StandardOutput& output, gnome::ExtensionSwitch& extension)
      : DesktopWorkspace(children, output), extension_(extension) {}

  /// The permission's page in a Wayland session of GNOME: goes as far towards the extension as can be gone.
  bool open(const std::string& pathOrAddress) override;
  [[nodiscard]] std::string adviceFor(const std::string& settingsAddress) const override;
  void forgetApplication() override;

 private:
  [[nodiscard]] bool leadsToExtension(const std::string& address) const;

  gnome::ExtensionSwitch& extension_;
};

}  // namespace dormel
