#include "platform/linux/jobs/SessionEnvironment.h"

#include <algorithm>
#include <array>
#include <cstdlib>
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
                                     "LC_TIME",
                                     "TZ"};

}  // namespace

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

std::string valueIn(const std::vector<std::string>& environment, std::string_view name) {
  for (const std::string& entry : environment) {
    if (entry.size() > name.size() && entry[name.size()] == '=' && entry.starts_with(name)) {
      return entry.substr(name.size() + 1);
    }
  }
  return {};
}

bool namesDisplay(const std::vector<std::string>& ours) {
  return !valueIn(ours, "DISPLAY").empty() || !valueIn(ours, "WAYLAND_DISPLAY").empty();
}

bool namesLocalDisplay(const std::vector<std::string>& ours) {
  const std::string display = valueIn(ours, "DISPLAY");
  return display.starts_with(':') || display.starts_with("unix:") || !valueIn(ours, "WAYLAND_DISPLAY").empty();
}

bool namesAnotherDisplay(const std::vector<std::string>& theirs, const std::vector<std::string>& ours) {
  if (!namesDisplay(ours) || (namesLocalDisplay(theirs) && !namesLocalDisplay(ours))) return false;
  return std::any_of(DISPLAY_VARIABLES.begin(), DISPLAY_VARIABLES.end(),
                     [&](const char* name) { return valueIn(ours, name) != valueIn(theirs, name); });
}

bool runsOnAnotherDisplay(pid_t process, const std::vector<std::string>& ours) {
  const auto theirs = environmentOf(process);
  return !theirs.empty() && namesAnotherDisplay(theirs, ours);
}

std::vector<std::string> keepingDisplay(std::vector<std::string> ours, const std::vector<std::string>& theirs) {
  const bool isBetter =
      namesLocalDisplay(theirs) ? !namesLocalDisplay(ours) : namesDisplay(theirs) && !namesDisplay(ours);
  if (!isBetter) return ours;
  for (const char* name : DISPLAY_VARIABLES) {
    std::erase_if(ours, [&](const std::string& entry) { return entry.substr(0, entry.find('=')) == name; });
  }
  const auto display = displayVariables(theirs);
  ours.insert(ours.end(), display.begin(), display.end());
  return ours;
}

std::vector<std::string> displayVariables(const std::vector<std::string>& environment) {
  std::vector<std::string> variables;
  for (const char* name : DISPLAY_VARIABLES) {
    std::string& variable = variables.emplace_back(name);
    if (const std::string value = valueIn(environment, name); !value.empty()) variable.append("=").append(value);
  }
  return variables;
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
