#include <poll.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "platform/linux/freedesktop/BaseDirectories.h"
#include "platform/linux/jobs/JobLaunch.h"
#include "platform/linux/jobs/SessionEnvironment.h"
#include "platform/linux/posix/FileDescriptor.h"

namespace dormel::jobs {
namespace {

constexpr const char* SOCKET_FOLDER = "/tmp/.X11-unix";
constexpr int SETTLE_MS = 50;
constexpr int SETTLE_TRIES = 100;
// A server may listen without a socket file, and then nothing announces it.
constexpr int LOOK_AGAIN_MS = 60'000;

/// The number in ":0", ":0.1" or "unix:0"; empty for a display that is not on this machine.
std::string localNumber(std::string text) {
  if (text.starts_with("unix:")) text.erase(0, 4);
  if (!text.starts_with(':')) return {};
  text = text.substr(1, text.find('.') == std::string::npos ? text.npos : text.find('.') - 1);
  if (text.size() > 5 || text.find_first_not_of("0123456789") != std::string::npos) return {};
  return text;
}

bool accepts(const std::string& path, bool abstractName) {
  const posix::FileDescriptor connection(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!connection.valid()) return true;  // not the server's fault
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() + 2 > sizeof address.sun_path) return false;
  std::memcpy(&address.sun_path[abstractName ? 1 : 0], path.c_str(), path.size());
  const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size() + 1);
  const bool refused = ::connect(connection.get(), reinterpret_cast<const sockaddr*>(&address), length) != 0 &&
                       (errno == ECONNREFUSED || errno == ENOENT);
  return !refused;
}

bool takesConnections(const std::vector<std::string>& display) {
  if (const std::string wayland = valueIn(display, "WAYLAND_DISPLAY"); !wayland.empty()) {
    if (accepts(wayland.starts_with('/') ? wayland : freedesktop::runtimeDirectory() + "/" + wayland, false))
      return true;
  }
  const std::string number = localNumber(valueIn(display, "DISPLAY"));
  const std::string path = std::string(SOCKET_FOLDER) + "/X" + number;
  return !number.empty() && (accepts(path, true) || accepts(path, false));
}

std::string nameOf(const std::vector<std::string>& display) {
  const std::string wayland = valueIn(display, "WAYLAND_DISPLAY");
  return wayland.empty() ? valueIn(display, "DISPLAY") : wayland;
}

void say(const std::string& line) { std::fprintf(stderr, "%s\n", line.c_str()); }

/// Waits for a display server's socket. Set before the look that it answers for.
class SocketWatch {
 public:
  SocketWatch() : watch_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
    constexpr std::uint32_t arrivals = IN_CREATE | IN_MOVED_TO | IN_ATTRIB;
    if (::inotify_add_watch(watch_.get(), SOCKET_FOLDER, arrivals) < 0)
      ::inotify_add_watch(watch_.get(), "/tmp", arrivals);
    ::inotify_add_watch(watch_.get(), freedesktop::runtimeDirectory().c_str(), arrivals);
  }

  void wait() const {
    pollfd entry{watch_.get(), POLLIN, 0};
    ::poll(&entry, 1, LOOK_AGAIN_MS);
  }

 private:
  posix::FileDescriptor watch_;
};

}  // namespace

void waitForDisplay(const std::string& name, const SessionDisplays& others) {
  const auto own = displayVariables(sessionEnvironment());
  const auto found = [&] {
    if (takesConnections(own)) return true;
    for (const auto& other : others()) {
      if (!takesConnections(other)) continue;
      adoptSessionEnvironment(displayVariables(other));
      if (namesDisplay(own)) say(name + ": " + nameOf(own) + " takes no connections; going to " + nameOf(other) + ".");
      return true;
    }
    return !namesLocalDisplay(own);  // nothing on this machine to wait for
  };
  if (found()) return;
  say(name + ": " + nameOf(own) + " takes no connections; waiting for a display of this user's session.");
  for (;;) {
    const SocketWatch watch;
    // A socket appears a moment before its server listens on it, and nothing announces that.
    for (int i = 0; i < SETTLE_TRIES; ++i) {
      if (found()) return;
      ::poll(nullptr, 0, SETTLE_MS);
    }
    watch.wait();
  }
}

}  // namespace dormel::jobs
