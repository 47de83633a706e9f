// What a desktop does for an application besides windows: applications folders, the trash, opening things, running
// applications, the settings program, the administrator's shell, login items. Main thread only.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Files.h"

namespace dormel {

/// An error of the administrator's shell: a number (the shell's exit status, or the refusal's) and perhaps a message.
struct AuthorizationError {
  int code = 1;
  std::optional<std::string> message;
};

class Workspace {
 public:
  virtual ~Workspace() = default;

  /// All folders that applications are installed in, the user's own among them. Absolute paths.
  [[nodiscard]] virtual std::vector<std::string> applicationsDirectories() const = 0;
  /// The one that a program moves itself to; nothing when there is none.
  [[nodiscard]] virtual std::optional<std::string> localApplicationsDirectory() const = 0;

  /// `path` without "." and ".." and with symbolic links resolved, as far as it exists.
  [[nodiscard]] virtual std::string standardized(const std::string& path) const = 0;
  /// Whether `path` lies on a volume that was mounted for one thing (a disk image, a stick) and cannot be written.
  [[nodiscard]] virtual bool isOnReadOnlyImage(const std::string& path) const = 0;
  [[nodiscard]] virtual bool isWritable(const std::string& path) const = 0;
  /// Whether this user may delete the file or folder.
  [[nodiscard]] virtual bool isDeletable(const std::string& path) const = 0;

  /// Whether both paths lead to one file or folder, be it that one disk is mounted at two places.
  [[nodiscard]] virtual bool isSameFile(const std::string& a, const std::string& b) const = 0;

  /// Puts a copy of a file or folder with all it holds at `to`, links kept and permissions too, but that its owner may
  /// change it. It appears there whole and safely on the disk. What stood there goes to the desktop's trash, or is
  /// where it was when anything fails.
  virtual FileResult putCopy(const std::string& from, const std::string& to) = 0;

  /// The bundles of the applications that this user is running now, this process left out.
  [[nodiscard]] virtual std::vector<std::string> runningBundles() const = 0;
  /// The file of the picture that file managers show for the file or bundle; empty when they choose it themselves.
  [[nodiscard]] virtual std::string iconForFile(const std::string& path) const = 0;
  /// Opens an application bundle, a file or an address the way the desktop does; false when it cannot.
  virtual bool open(const std::string& pathOrAddress) = 0;
  /// Where to look instead, in words for people, when `open` could not open the address of a settings page.
  [[nodiscard]] virtual std::string adviceFor(const std::string& settingsAddress) const = 0;

  /// Lists the application in the desktop's menus, under its own icon and at the place where `bundle` stands now.
  /// Costs nothing when it is listed so already; a failure is ignored.
  virtual void registerApplication(const std::string& bundle) = 0;
  /// Removes whatever this platform keeps for the program besides what the logic knows of: its place in the menus and
  /// in the desktop's autostart, caches, the instance locks of its processes, and each folder that was created for one
  /// of its files, if nothing else has moved in. Comes last: what is written afterwards stays.
  virtual void forgetApplication() = 0;

  /// Runs one shell command as the administrator, after the desktop asked for the password. Blocks.
  virtual std::optional<AuthorizationError> runAsAdministrator(const std::string& command) = 0;
};

enum class LoginItemStatus { notRegistered, enabled, requiresApproval, notFound };

class LoginItems {
 public:
  virtual ~LoginItems() = default;
  /// What the desktop thinks of the job whose property list is at `path`. Only requiresApproval is special: the
  /// user switched the program off in the desktop's own settings, and only the user can switch it on again.
  [[nodiscard]] virtual LoginItemStatus status(const std::string& path) const = 0;
  /// Opens the settings page with that switch; false when it cannot.
  virtual bool openSettings() = 0;
  /// Where to switch it on instead, in words for people.
  [[nodiscard]] virtual std::string advice() const = 0;
};

}  // namespace dormel
