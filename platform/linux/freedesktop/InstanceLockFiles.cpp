#include "platform/linux/freedesktop/InstanceLockFiles.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

#include "platform/Identifiers.h"
#include "platform/linux/freedesktop/BaseDirectories.h"
#include "platform/linux/posix/Environment.h"

namespace dormel::freedesktop {
namespace {

std::string folder() {
  std::string runtime = runtimeDirectory();
  return ::access(runtime.c_str(), W_OK | X_OK) == 0 ? runtime : homeDirectory();
}

std::string prefix() { return std::string(".") + BUNDLE_IDENTIFIER; }

std::string asFileName(std::string display) {
  std::replace_if(
      display.begin(), display.end(), [](char c) { return c == '/' || c == ':'; }, '_');
  return display;
}

std::string displayName() {
  std::string display = posix::environmentVariable("DISPLAY");
  // ":0.0" is a screen of ":0".
  const auto colon = display.rfind(':');
  if (colon != std::string::npos) display = display.substr(0, display.find('.', colon));
  if (display.empty()) display = posix::environmentVariable("WAYLAND_DISPLAY");
  return asFileName(std::move(display));
}

}  // namespace

posix::InstanceLockPaths instanceLockFiles() {
  const std::string stem = folder() + "/" + prefix() + displayName();
  return {stem + ".session", stem + ".window"};
}

std::string lockMarkFile() {
  return folder() + "/" + prefix() + asFileName(posix::environmentVariable("WAYLAND_DISPLAY")) + ".lock";
}

void removeInstanceLockFiles() {
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder(), error)) {
    const std::string name = entry.path().filename().string();
    if (name.starts_with(prefix()) && (name.ends_with(".session") || name.ends_with(".window"))) {
      std::error_code ignored;
      std::filesystem::remove(entry.path(), ignored);
    }
  }
}

}  // namespace dormel::freedesktop
