#include "platform/linux/wayland/LockMark.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <sstream>

#include "platform/linux/posix/FileDescriptor.h"

namespace dormel::wayland {
namespace {

/// A file that is no longer than a few hundred bytes.
std::optional<std::string> readShort(const std::string& path) {
  const posix::FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
  if (!file.valid()) return std::nullopt;
  std::array<char, 1024> text{};
  const ssize_t got = ::read(file.get(), text.data(), text.size());
  if (got < 0) return std::nullopt;
  return std::string(text.data(), static_cast<std::size_t>(got));
}

}  // namespace

std::optional<ProcessMark> ProcessMark::of(pid_t pid) {
  if (pid <= 0) return std::nullopt;
  const auto stat = readShort("/proc/" + std::to_string(pid) + "/stat");
  if (!stat) return std::nullopt;
  // The name may hold anything, brackets too.
  std::istringstream rest(stat->substr(std::min(stat->rfind(')'), stat->size() - 1) + 1));
  char state = 0;
  rest >> state;
  if (state == 'Z' || state == 'X') return std::nullopt;
  std::string skipped;
  for (int field = 4; field < 22; ++field) rest >> skipped;
  ProcessMark mark{pid, 0};
  rest >> mark.startedAt;
  return mark;
}

std::string LockMark::text() const {
  std::ostringstream text;
  text << owner.pid << ' ' << owner.startedAt << ' ' << compositor.pid << ' ' << compositor.startedAt << '\n';
  return text.str();
}

std::optional<LockMark> LockMark::parse(const std::string& text) {
  LockMark mark;
  std::istringstream words(text);
  words >> mark.owner.pid >> mark.owner.startedAt >> mark.compositor.pid >> mark.compositor.startedAt;
  if (words.fail() || mark.owner.pid <= 0) return std::nullopt;
  return mark;
}

std::optional<LockMark> LockMark::read(const std::string& path) {
  const auto text = readShort(path);
  return text ? parse(*text) : std::nullopt;
}

bool LockMark::write(const std::string& path) const {
  const std::string temporary = path + ".new";
  const std::string line = text();
  {
    const posix::FileDescriptor file(
        ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!file.valid() || ::write(file.get(), line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
      return false;
    }
  }
  return ::rename(temporary.c_str(), path.c_str()) == 0;
}

std::optional<ProcessMark> peerOf(int socket) {
  ucred peer{};
  socklen_t size = sizeof peer;
  if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) return std::nullopt;
  return ProcessMark::of(peer.pid);
}

bool hasAbandonedLock(const std::string& path, const std::optional<ProcessMark>& compositor) {
  const auto mark = LockMark::read(path);
  if (!mark || !compositor) return false;
  if (mark->compositor != *compositor) {
    ::unlink(path.c_str());
    return false;
  }
  return !mark->owner.isAlive();
}

}  // namespace dormel::wayland
