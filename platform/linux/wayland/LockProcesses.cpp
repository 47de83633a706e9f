#include "platform/linux/wayland/LockProcesses.h"

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

std::optional<ProcessMark> processOf(int pid) {
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

std::optional<LockMark> readMark(const std::string& path) {
  const auto text = readShort(path);
  return text ? LockMark::parse(*text) : std::nullopt;
}

bool writeMark(const LockMark& mark, const std::string& path) {
  const std::string temporary = path + ".new";
  const std::string line = mark.text();
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
  return processOf(peer.pid);
}

bool hasAbandonedLock(const std::string& path, const std::optional<ProcessMark>& compositor) {
  const auto mark = readMark(path);
  if (!mark || !compositor) return false;
  if (mark->compositor != *compositor) {
    ::unlink(path.c_str());
    return false;
  }
  return !isAlive(mark->owner);
}

}  // namespace dormel::wayland
