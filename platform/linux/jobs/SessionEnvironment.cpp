#include "platform/linux/jobs/SessionEnvironment.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "platform/linux/freedesktop/TextFile.h"

namespace dormel::jobs {
namespace {

// Not the login session's id or seat: a process must not claim a session that the login manager did not put it in.
constexpr std::array DISPLAY_VARIABLES{"DISPLAY", "XAUTHORITY", "WAYLAND_DISPLAY"};
constexpr std::array OTHER_VARIABLES{"XDG_CURRENT_DESKTOP",
                                     "XDG_SESSION_DESKTOP",
                                     "XDG_SESSION_TYPE",
                                     "DESKTOP_SESSION",
                                     "DBUS_SESSION_BUS_ADDRESS",
                                     "LANG",
                                     "LANGUAGE",
                                     "LC_ALL",
                                     "LC_CTYPE",
                                     "LC_MESSAGES",
                                     "LC_TIME"};

std::optional<std::string_view> valueIn(const std::vector<std::string>& environment, std::string_view name) {
  for (const std::string& entry : environment) {
    if (entry.size() > name.size() && entry[name.size()] == '=' && entry.starts_with(name)) {
      return std::string_view(entry).substr(name.size() + 1);
    }
  }
  return {};
}

std::vector<std::string> environmentOf(pid_t process) {
  std::vector<std::string> environment;
  const auto block = freedesktop::readTextFile("/proc/" + std::to_string(process) + "/environ");
  if (!block) return environment;
  for (std::size_t at = 0; at < block->size();) {
    const auto end = std::min(block->find('\0', at), block->size());
    environment.push_back(block->substr(at, end - at));
    at = end + 1;
  }
  return environment;
}

}  // namespace

std::vector<std::string> sessionEnvironment() {
  std::vector<std::string> entries;
  std::vector<std::string> missing;
  const auto take = [&](const char* name) {
    const char* value = std::getenv(name);
    const bool present = value != nullptr && *value != '\0';
    if (present) entries.push_back(std::string(name) + "=" + value);
    return present;
  };
  for (const char* name : DISPLAY_VARIABLES) {
    if (!take(name)) missing.emplace_back(name);
  }
  for (const char* name : OTHER_VARIABLES) take(name);
  if (namesDisplay(entries)) entries.insert(entries.end(), missing.begin(), missing.end());
  return entries;
}

bool namesDisplay(const std::vector<std::string>& ours) {
  return !valueIn(ours, "DISPLAY").value_or("").empty() || !valueIn(ours, "WAYLAND_DISPLAY").value_or("").empty();
}

bool runsOnAnotherDisplay(pid_t process, const std::vector<std::string>& ours) {
  if (!namesDisplay(ours)) return false;
  const auto theirs = environmentOf(process);
  if (theirs.empty()) return false;  // it ended just now, or is not ours to judge
  return std::any_of(DISPLAY_VARIABLES.begin(), DISPLAY_VARIABLES.end(), [&](const char* name) {
    return valueIn(ours, name).value_or("") != valueIn(theirs, name).value_or("");
  });
}

void adoptSessionEnvironment(const std::vector<std::string>& changes) {
  for (const std::string& change : changes) {
    const auto equals = change.find('=');
    if (equals == std::string::npos) {
      ::unsetenv(change.c_str());
    } else {
      ::setenv(change.substr(0, equals).c_str(), change.c_str() + equals + 1, 1);
    }
  }
}

}  // namespace dormel::jobs
