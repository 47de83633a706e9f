#include "platform/sim/SimWorkspace.h"

#include <algorithm>
#include <filesystem>

namespace dormel {
namespace {

bool isAtOrBelow(const std::string& path, const std::string& folder) {
  return path == folder || path.starts_with(folder + "/");
}

}  // namespace

std::string SimWorkspace::standardized(const std::string& path) const {
  std::string plain = std::filesystem::path(path).lexically_normal().string();
  if (plain.size() > 1 && plain.ends_with('/')) plain.pop_back();
  for (const auto& [link, target] : links_) {
    if (isAtOrBelow(plain, link)) return standardized(target + plain.substr(link.size()));
  }
  return plain;
}

bool SimWorkspace::isOnReadOnlyImage(const std::string& path) const {
  return std::any_of(images_.begin(), images_.end(),
                     [&](const std::string& image) { return isAtOrBelow(path, image); });
}

bool SimWorkspace::isSameFile(const std::string& a, const std::string& b) const {
  const auto onDisk = [this](const std::string& path) {
    std::string plain = standardized(path);
    for (const auto& [mount, folder] : mounts_) {
      if (isAtOrBelow(plain, mount)) return folder + plain.substr(mount.size());
    }
    return plain;
  };
  return onDisk(a) == onDisk(b);
}

bool SimWorkspace::open(const std::string& pathOrAddress) {
  journal_.note("open ", pathOrAddress);
  return hasSettings_ || !pathOrAddress.starts_with("x-apple.systempreferences:");
}

void SimWorkspace::registerApplication(const std::string& bundle) {
  if (listed_ != bundle) journal_.note("listed in the menus: ", bundle);
  listed_ = bundle;
}

void SimWorkspace::forgetApplication() {
  journal_.note("forgotten by the desktop");
  listed_.clear();
}

std::optional<AuthorizationError> SimWorkspace::runAsAdministrator(const std::string& command) {
  journal_.note("administrator", answer_ ? " refuses: " : ": ", command);
  return answer_;
}

void SimWorkspace::mountImage(const std::string& path) {
  images_.push_back(path);
  files_.putDirectory(path);
  files_.chmod(path, 0555);
}

}  // namespace dormel
