// The desktop's switch for what starts at login, as the job's autostart entry shows it. Main thread only.
#pragma once

#include "platform/Workspace.h"
#include "platform/linux/freedesktop/Opener.h"

namespace dormel::freedesktop {

class AutostartLoginItems final : public LoginItems {
 public:
  /// Both outlive this object.
  AutostartLoginItems(ChildProcesses& children, StandardOutput& output) : opener_(children, output) {}

  [[nodiscard]] LoginItemStatus status(const std::string& path) const override;
  bool openSettings() override;
  [[nodiscard]] std::string advice() const override;

 private:
  Opener opener_;
};

}  // namespace dormel::freedesktop
