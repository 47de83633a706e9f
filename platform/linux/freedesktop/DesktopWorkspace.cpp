#include "platform/linux/freedesktop/DesktopWorkspace.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <system_error>

#include "platform/Identifiers.h"
#include "platform/Process.h"
#include "platform/Texts.h"
#include "platform/linux/freedesktop/AppBundle.h"
#include "platform/linux/freedesktop/ApplicationEntry.h"
#include "platform/linux/freedesktop/AutostartEntry.h"
#include "platform/linux/freedesktop/BaseDirectories.h"
#include "platform/linux/freedesktop/CreatedFolders.h"
#include "platform/linux/freedesktop/InstanceLockFiles.h"
#include "platform/linux/freedesktop/MountTable.h"
#include "platform/linux/freedesktop/Programs.h"
#include "platform/linux/freedesktop/TextFile.h"
#include "platform/linux/freedesktop/Trash.h"
#include "platform/linux/freedesktop/Tree.h"
#include "platform/linux/posix/Environment.h"
#include "platform/linux/posix/PosixChildProcesses.h"

namespace dormel::freedesktop {
namespace fs = std::filesystem;
namespace {

constexpr const char* EVERYBODYS = "/Applications";
// How the tool for administrators says that it did not get as far as the command.
constexpr int DISMISSED = 126;
constexpr int NOT_AUTHORIZED = 127;

std::string usersOwn() { return homeDirectory() + "/Applications"; }

bool isFolder(const std::string& path) {
  std::error_code ignored;
  return fs::is_directory(path, ignored);
}

}  // namespace

DesktopWorkspace::DesktopWorkspace(posix::PosixChildProcesses& children, StandardOutput& output)
    : children_(children), output_(output), opener_(children, output) {}

std::vector<std::string> DesktopWorkspace::applicationsDirectories() const { return {usersOwn(), EVERYBODYS}; }

std::optional<std::string> DesktopWorkspace::localApplicationsDirectory() const {
  if (isFolder(EVERYBODYS)) return EVERYBODYS;
  if (const auto error = createFolders(usersOwn())) return {};
  return usersOwn();
}

std::string DesktopWorkspace::standardized(const std::string& path) const {
  std::error_code error;
  const fs::path resolved = fs::weakly_canonical(path, error);
  std::string text = (error ? fs::path(path).lexically_normal() : resolved).string();
  while (text.size() > 1 && text.back() == '/') text.pop_back();
  return text;
}

bool DesktopWorkspace::isOnReadOnlyImage(const std::string& path) const {
  struct statvfs volume {};
  if (::statvfs(path.c_str(), &volume) != 0 || (volume.f_flag & ST_RDONLY) == 0) return false;
  const auto mount = mountOf(standardized(path));
  return mount && isImage(*mount);
}

bool DesktopWorkspace::isWritable(const std::string& path) const {
  return ::access(path.c_str(), isFolder(path) ? W_OK | X_OK : W_OK) == 0;
}

bool DesktopWorkspace::isDeletable(const std::string& path) const { return isTreeDeletable(path); }

bool DesktopWorkspace::isSameFile(const std::string& a, const std::string& b) const {
  std::error_code ignored;
  return fs::equivalent(a, b, ignored);
}

FileResult DesktopWorkspace::putCopy(const std::string& from, const std::string& to) {
  std::optional<Trashed> old;
  auto error = copyTree(children_, from, to, [&]() -> FileResult {
    std::error_code ignored;
    if (!fs::exists(fs::symlink_status(to, ignored))) return {};
    return moveToTrash(children_, to, &old);
  });
  if (error && old) putBack(children_, *old);
  return error;
}

std::vector<std::string> DesktopWorkspace::runningBundles() const {
  std::vector<std::string> bundles;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator("/proc", error)) {
    const std::string name = entry.path().filename().string();
    pid_t process = 0;
    if (std::from_chars(name.data(), name.data() + name.size(), process).ptr != name.data() + name.size()) continue;
    struct stat info {};
    if (process == ::getpid() || ::stat(entry.path().c_str(), &info) != 0 || info.st_uid != ::getuid()) continue;
    auto bundle = bundleOfExecutable(posix::executableOf(name));
    if (bundle && std::find(bundles.begin(), bundles.end(), *bundle) == bundles.end()) {
      bundles.push_back(std::move(*bundle));
    }
  }
  return bundles;
}

std::string DesktopWorkspace::iconForFile(const std::string& path) const {
  const auto name = bundleInfo(path, "CFBundleIconFile");
  const std::string file = path + "/Contents/Resources/" + name.value_or("");
  return name && ::access(file.c_str(), R_OK) == 0 ? file : std::string();
}

bool DesktopWorkspace::open(const std::string& pathOrAddress) { return opener_.open(pathOrAddress); }

std::string DesktopWorkspace::adviceFor(const std::string& settingsAddress) const {
  return settingsAdvice(settingsPageAt(settingsAddress).value_or(SettingsPage::accessibility));
}

void DesktopWorkspace::registerApplication(const std::string& bundle) {
  if (const auto error = ApplicationEntry(BUNDLE_IDENTIFIER).write(bundle)) {
    output_.printError("Dormel: cannot be listed among the applications: " + error->message);
  }
}

void DesktopWorkspace::forgetApplication() {
  ApplicationEntry(BUNDLE_IDENTIFIER).remove();
  // The job's own removal leaves an entry that the user switched off, to remember that.
  ::unlink(AutostartEntry(BUNDLE_IDENTIFIER).path().c_str());
  std::error_code ignored;
  fs::remove_all(cacheHome() + "/Dormel", ignored);
  removeInstanceLockFiles();
  // Which programs GNOME Shell's extension answers.
  ::unlink((stateHome() + "/" + BUNDLE_IDENTIFIER + ".gnome.programs").c_str());
  removeCreatedFolders();
}

std::optional<AuthorizationError> DesktopWorkspace::runAsAdministrator(const std::string& command) {
  const auto tool = findProgram("pkexec");
  if (!tool)
    return AuthorizationError{NOT_AUTHORIZED, translate("This needs an administrator, and pkexec is not installed.")};
  const auto outcome = children_.runHearingErrors(*tool, {"/bin/sh", "-c", command});
  switch (outcome.status) {
    case 0:
      return {};
    case DISMISSED:
      return AuthorizationError{DISMISSED, translate("The administrator's password was not given.")};
    case NOT_AUTHORIZED:
      return AuthorizationError{NOT_AUTHORIZED, translate("The administrator's rights could not be had.")};
    default:
      break;
  }
  const std::string line = outcome.errors.substr(0, outcome.errors.find('\n'));
  return AuthorizationError{outcome.status, line.empty() ? std::nullopt : std::optional(line)};
}

}  // namespace dormel::freedesktop
