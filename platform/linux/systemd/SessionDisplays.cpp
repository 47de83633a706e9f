#include "platform/linux/systemd/SessionDisplays.h"

#include <systemd/sd-login.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <set>
#include <system_error>

#include "platform/linux/freedesktop/BaseDirectories.h"
#include "platform/linux/jobs/SessionEnvironment.h"
#include "platform/linux/systemd/UserManager.h"

namespace dormel::jobs::systemd {
namespace {

/// What one of the login manager's questions about a session answers; empty without an answer.
std::string answer(int (*question)(const char*, char**), const char* session) {
  char* text = nullptr;
  if (question(session, &text) < 0 || text == nullptr) return {};
  std::string copy = text;
  std::free(text);
  return copy;
}

/// The login manager knows no names of Wayland displays. Their sockets lie in this user's runtime folder.
std::set<std::string> waylandSockets() {
  std::set<std::string> names;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(freedesktop::runtimeDirectory(), error)) {
    const std::string name = entry.path().filename().string();
    std::error_code ignored;
    if (name.starts_with("wayland-") && entry.is_socket(ignored)) names.insert(name);
  }
  return names;
}

}  // namespace

std::vector<std::vector<std::string>> sessionDisplays() {
  std::vector<std::vector<std::string>> displays;
  if (const auto manager = UserManager::connect()) {
    auto variables = displayVariables(manager->environment());
    if (namesLocalDisplay(variables)) displays.push_back(std::move(variables));
  }
  // Nor of the file that opens an X display: the one that was in use, if it is still there.
  const char* file = std::getenv("XAUTHORITY");
  const std::string authority = file != nullptr && ::access(file, R_OK) == 0 ? std::string("XAUTHORITY=") + file : "";
  char** sessions = nullptr;
  if (sd_uid_get_sessions(::getuid(), 0, &sessions) < 0) return displays;
  for (char** session = sessions; session != nullptr && *session != nullptr; ++session) {
    const std::string type = answer(sd_session_get_type, *session);
    const std::string display = answer(sd_session_get_display, *session);
    if (type == "x11" && !display.empty()) displays.push_back({"DISPLAY=" + display, authority});
    if (type == "wayland") {
      for (const std::string& name : waylandSockets()) displays.push_back({"WAYLAND_DISPLAY=" + name});
    }
    std::free(*session);
  }
  std::free(sessions);
  return displays;
}

}  // namespace dormel::jobs::systemd
