#include "platform/linux/wayland/LockWatcher.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <thread>

#include "platform/linux/wayland/LockProcesses.h"
#include "platform/linux/wayland/LockRelease.h"

namespace dormel::wayland {
namespace {

constexpr std::chrono::seconds RELEASE_LIMIT{5};
constexpr const char* NAME = "dormel-watch";
constexpr char DISMISSED = 'q';

/// Goes by another name than the program that it is a copy of, in the process table too: whoever looks for that one by
/// its command line must not find this.
void rename() {
  ::prctl(PR_SET_NAME, NAME);
  std::FILE* stat = std::fopen("/proc/self/stat", "re");
  if (stat == nullptr) return;
  std::array<char, 2048> text{};
  const std::size_t got = std::fread(text.data(), 1, text.size() - 1, stat);
  std::fclose(stat);
  const char* rest = got > 0 ? std::strrchr(text.data(), ')') : nullptr;
  unsigned long first = 0;
  unsigned long last = 0;
  constexpr int ARGUMENTS_START = 48;  // counted as in proc(5), where the name is the second field
  for (int field = 3; rest != nullptr && field <= ARGUMENTS_START + 1; ++field) {
    rest = std::strchr(rest + 1, ' ');
    if (rest == nullptr) return;
    if (field == ARGUMENTS_START) first = std::strtoul(rest, nullptr, 10);
    if (field == ARGUMENTS_START + 1) last = std::strtoul(rest, nullptr, 10);
  }
  const std::size_t length = std::strlen(NAME);
  if (first == 0 || last <= first + length) return;
  auto* const arguments = reinterpret_cast<char*>(first);  // NOLINT(performance-no-int-to-ptr): our own command line
  std::memset(arguments, 0, last - first);
  std::copy_n(NAME, length, arguments);
}

/// Keeps nothing of what the owner had open, its claims on files least of all.
void closeAllBut(int one, int other) {
  const auto low = static_cast<unsigned>(std::min(one, other));
  const auto high = static_cast<unsigned>(std::max(one, other));
  const auto close = [](unsigned from, unsigned to) {
    if (from <= to) ::syscall(SYS_close_range, from, to, 0U);
  };
  if (low > 0) close(0, low - 1);
  close(low + 1, high - 1);
  close(high + 1, ~0U);
}

Seconds now() { return std::chrono::duration<Seconds>(std::chrono::steady_clock::now().time_since_epoch()).count(); }

AbandonedLockPolicy::Seen seen(const LockWatcher::Watched& watched) {
  AbandonedLockPolicy::Seen seen;
  seen.mark = readMark(watched.path);
  seen.isOwnerAlive = seen.mark && isAlive(seen.mark->owner);
  seen.isCompositorAlive = watched.mark.compositor.pid == 0 || isAlive(watched.mark.compositor);
  return seen;
}

void takeCare(const LockWatcher::Watched& watched) {
  AbandonedLockPolicy watch(watched.mark.owner, watched.isMarked, now());
  for (;;) {
    switch (watch.next(seen(watched), now())) {
      case AbandonedLockPolicy::Step::end:
        return;
      case AbandonedLockPolicy::Step::look:
        break;
      case AbandonedLockPolicy::Step::release: {
        const LockRelease result = releaseLock(watched.display, RELEASE_LIMIT);
        if (result == LockRelease::released) {
          ::unlink(watched.path.c_str());
          return;
        }
        watch.tried(result);
        break;
      }
    }
    std::this_thread::sleep_for(std::chrono::duration<Seconds>(AbandonedLockPolicy::PAUSE));
  }
}

/// Until the owner is dead; false when it said before that nothing is locked any more. Only the process itself tells
/// of its end: what it had open is closed while the system still counts it among the living.
bool waitForEnd(int owner, int leash) {
  std::array<pollfd, 2> entries{{{owner, POLLIN, 0}, {leash, POLLIN, 0}}};
  for (;;) {
    if (::poll(entries.data(), entries.size(), -1) < 0) {
      if (errno == EINTR) continue;
      return true;
    }
    char word = 0;
    if ((entries[1].revents & POLLIN) != 0 && ::read(leash, &word, 1) == 1 && word == DISMISSED) return false;
    if (entries[0].revents != 0) return true;
    if (entries[1].revents != 0) entries[1].fd = -1;
  }
}

[[noreturn]] void watch(int owner, int leash, const LockWatcher::Watched& watched) {
  ::setsid();
  closeAllBut(owner, leash);
  rename();
  if (waitForEnd(owner, leash)) takeCare(watched);
  ::_exit(0);
}

}  // namespace

LockWatcher::LockWatcher(const Watched& watched) {
  const posix::FileDescriptor self(static_cast<int>(::syscall(SYS_pidfd_open, ::getpid(), 0)));
  std::array<int, 2> ends{};
  if (!self.valid() || ::pipe2(ends.data(), O_CLOEXEC) != 0) return;
  const posix::FileDescriptor reading(ends[0]);
  posix::FileDescriptor writing(ends[1]);
  const pid_t between = ::fork();
  if (between == 0) {
    // Nobody's child, so that nobody has to wait for it.
    const pid_t watcher = ::fork();
    if (watcher == 0) watch(self.get(), reading.get(), watched);
    ::_exit(watcher < 0 ? 1 : 0);
  }
  int status = 1;
  if (between < 0 || ::waitpid(between, &status, 0) != between || status != 0) return;
  leash_ = std::move(writing);
}

LockWatcher::~LockWatcher() {
  if (leash_.valid()) static_cast<void>(!::write(leash_.get(), &DISMISSED, 1));
}

}  // namespace dormel::wayland
