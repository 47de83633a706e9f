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

#include "platform/linux/wayland/LockMark.h"
#include "platform/linux/wayland/LockRelease.h"

namespace dormel::wayland {
namespace {

constexpr std::chrono::seconds PATIENCE{10};
constexpr std::chrono::milliseconds LOOK{250};
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

void waitForTakeover(const std::string& mark, const std::string& display) {
  const auto deadline = std::chrono::steady_clock::now() + PATIENCE;
  while (std::chrono::steady_clock::now() < deadline) {
    const auto found = LockMark::read(mark);
    if (!found || found->owner.isAlive()) return;  // it was given back, or somebody has it
    std::this_thread::sleep_for(LOOK);
  }
  static_cast<void>(releaseAbandonedLock(mark, display, RELEASE_LIMIT));
}

[[noreturn]] void watch(int owner, int leash, const std::string& mark, const std::string& display) {
  ::setsid();
  closeAllBut(owner, leash);
  rename();
  std::array<pollfd, 2> entries{{{owner, POLLIN, 0}, {leash, POLLIN, 0}}};
  while (::poll(entries.data(), entries.size(), -1) < 0 && errno == EINTR) {
  }
  char word = 0;
  if ((entries[1].revents & POLLIN) != 0 && ::read(leash, &word, 1) == 1 && word == DISMISSED) ::_exit(0);
  waitForTakeover(mark, display);
  ::_exit(0);
}

}  // namespace

LockWatcher::LockWatcher(const std::string& mark, const std::string& display) {
  const posix::FileDescriptor self(static_cast<int>(::syscall(SYS_pidfd_open, ::getpid(), 0)));
  std::array<int, 2> ends{};
  if (!self.valid() || ::pipe2(ends.data(), O_CLOEXEC) != 0) return;
  const posix::FileDescriptor reading(ends[0]);
  posix::FileDescriptor writing(ends[1]);
  const pid_t between = ::fork();
  if (between == 0) {
    // Nobody's child, so that nobody has to wait for it.
    const pid_t watcher = ::fork();
    if (watcher == 0) watch(self.get(), reading.get(), mark, display);
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
