// The desktop's services for applications, by the freedesktop.org conventions. Main thread only.
#pragma once

#include "platform/Workspace.h"
#include "platform/linux/freedesktop/Opener.h"

namespace dormel {
class StandardOutput;
namespace posix {
class PosixChildProcesses;
}
}  // namespace dormel

namespace dormel::freedesktop {

/// Applications folders are "/Applications", where an administrator made one, and "~/Applications", the user's own.
class DesktopWorkspace : public Workspace {
 public:
  /// Both outlive this object.
  DesktopWorkspace(posix::PosixChildProcesses& children, StandardOutput& output);

  [[nodiscard]] std::vector<std::string> applicationsDirectories() const override;
  /// "/Applications" where it exists, else "~/Applications", made if it is missing.
  [[nodiscard]] std::optional<std::string> localApplicationsDirectory() const override;
  [[nodiscard]] std::string standardized(const std::string& path) const override;
  [[nodiscard]] bool isOnReadOnlyImage(const std::string& path) const override;
  [[nodiscard]] bool isWritable(const std::string& path) const override;
  [[nodiscard]] bool isDeletable(const std::string& path) const override;
  [[nodiscard]] bool isSameFile(const std::string& a, const std::string& b) const override;
  FileResult putCopy(const std::string& from, const std::string& to) override;
  [[nodiscard]] std::vector<std::string> runningBundles() const override;
  /// A bundle's own picture; of anything else the desktop's theme decides.
  [[nodiscard]] std::string iconForFile(const std::string& path) const override;
  bool open(const std::string& pathOrAddress) override;
  [[nodiscard]] std::string adviceFor(const std::string& settingsAddress) const override;
  void registerApplication(const std::string& bundle) override;
  void forgetApplication() override;
  /// Through polkit, whose dialogue shows on the desktop (or in the terminal, where there is none).
  std::optional<AuthorizationError> runAsAdministrator(const std::string& command) override;

 private:
  posix::PosixChildProcesses& children_;
  StandardOutput& output_;
  Opener opener_;
};

}  // namespace dormel::freedesktop
