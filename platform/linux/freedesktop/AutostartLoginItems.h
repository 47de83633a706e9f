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

  /// What the page that `openSettings` opens is called; empty where there is none.
  [[nodiscard]] std::string pageName() const { return opener_.autostartPage(); }
  /// The entry's file.
  [[nodiscard]] static std::string file();

 private:
  Opener opener_;
};

}  // namespace dormel::freedesktop
