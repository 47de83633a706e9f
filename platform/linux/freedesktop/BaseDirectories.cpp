#include "platform/linux/freedesktop/BaseDirectories.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>

namespace dormel::freedesktop {
namespace {

std::optional<std::string> folderFrom(const char* variable) {
  const char* value = std::getenv(variable);
  if (value == nullptr || *value != '/') return {};
  std::string path = value;
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

std::string folderOr(const char* variable, const char* belowHome) {
  if (auto folder = folderFrom(variable)) return *folder;
  return homeDirectory() + belowHome;
}

}  // namespace

std::string homeDirectory() {
  if (auto home = folderFrom("HOME")) return *home;
  const passwd* user = getpwuid(getuid());
  return user == nullptr ? "/" : user->pw_dir;
}

std::string cacheHome() { return folderOr("XDG_CACHE_HOME", "/.cache"); }
std::string configHome() { return folderOr("XDG_CONFIG_HOME", "/.config"); }
std::string dataHome() { return folderOr("XDG_DATA_HOME", "/.local/share"); }
std::string stateHome() { return folderOr("XDG_STATE_HOME", "/.local/state"); }

std::string runtimeDirectory() {
  return folderFrom("XDG_RUNTIME_DIR").value_or("/run/user/" + std::to_string(getuid()));
}

}  // namespace dormel::freedesktop
