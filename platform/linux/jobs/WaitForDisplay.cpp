#include <poll.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/jobs/JobLaunch.h"
#include "platform/linux/posix/FileDescriptor.h"

namespace dormel::jobs {
namespace {

constexpr const char* SOCKET_FOLDER = "/tmp/.X11-unix";
constexpr int SETTLE_MS = 50;
constexpr int SETTLE_TRIES = 100;
// A server may listen without a socket file, and then nothing announces it.
constexpr int LOOK_AGAIN_MS = 60'000;

/// The number in ":0", ":0.1" or "unix:0"; nothing for a display that is not on this machine.
std::optional<std::string> localDisplayNumber() {
  const char* value = std::getenv("DISPLAY");
  if (value == nullptr) return {};
  std::string_view text = value;
  if (text.starts_with("unix:")) text.remove_prefix(4);
  if (!text.starts_with(':')) return {};
  text.remove_prefix(1);
  text = text.substr(0, text.find('.'));
  if (text.empty() || text.size() > 5 || text.find_first_not_of("0123456789") != std::string_view::npos) return {};
  return std::string(text);
}

bool accepts(const std::string& path, bool abstractName) {
  const posix::FileDescriptor connection(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!connection.valid()) return true;  // not the server's fault
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::memcpy(&address.sun_path[abstractName ? 1 : 0], path.c_str(), path.size());
  const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size() + 1);
  const bool refused = ::connect(connection.get(), reinterpret_cast<const sockaddr*>(&address), length) != 0 &&
                       (errno == ECONNREFUSED || errno == ENOENT);
  return !refused;
}

class FolderWatch {
 public:
  FolderWatch() : watch_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
    constexpr std::uint32_t arrivals = IN_CREATE | IN_MOVED_TO | IN_ATTRIB;
    if (::inotify_add_watch(watch_.get(), SOCKET_FOLDER, arrivals) < 0)
      ::inotify_add_watch(watch_.get(), "/tmp", arrivals);
  }

  /// Waits for an arrival; false when none came.
  [[nodiscard]] bool wait() const {
    pollfd entry{watch_.get(), POLLIN, 0};
    return ::poll(&entry, 1, LOOK_AGAIN_MS) > 0;
  }

 private:
  posix::FileDescriptor watch_;
};

}  // namespace

void waitForDisplay() {
  const char* wayland = std::getenv("WAYLAND_DISPLAY");
  const auto number = localDisplayNumber();
  if ((wayland != nullptr && *wayland != '\0') || !number) return;
  const std::string path = std::string(SOCKET_FOLDER) + "/X" + *number;
  const auto listening = [&] { return accepts(path, true) || accepts(path, false); };
  while (!listening()) {
    const FolderWatch watch;  // set before the look that it answers for
    if (listening()) return;
    if (!watch.wait()) continue;
    // The socket appears a moment before its server listens on it, and nothing announces that.
    for (int i = 0; i < SETTLE_TRIES && !listening(); ++i) ::poll(nullptr, 0, SETTLE_MS);
  }
}

}  // namespace dormel::jobs
