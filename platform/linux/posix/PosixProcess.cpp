#include "platform/linux/posix/PosixProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/random.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "platform/linux/posix/LeakCheck.h"
#include "platform/linux/posix/PosixQueues.h"

namespace dormel::posix {
namespace {

constexpr Seconds DRAIN_LIMIT = 2.0;

// A signal handler may do next to nothing; it rings this bell and the main loop does the rest.
std::array<std::atomic<int>, 65> signalEvents{};

void ringBell(int signal) {
  const int saved = errno;
  const std::uint64_t one = 1;
  const int fd = signalEvents.at(static_cast<std::size_t>(signal));
  if (fd > 0) static_cast<void>(!::write(fd, &one, sizeof one));
  errno = saved;
}

void writeLine(int fd, std::string_view text) {
  std::string line(text);
  line += '\n';
  std::string_view rest = line;
  while (!rest.empty()) {
    const ssize_t written = ::write(fd, rest.data(), rest.size());
    if (written >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno == EAGAIN) {
      pollfd ready{fd, POLLOUT, 0};
      if (::poll(&ready, 1, 1000) <= 0) return;  // a reader that has stopped must not stop us
    } else if (errno != EINTR) {
      return;
    }
  }
}

}  // namespace

PosixProcess::PosixProcess(PosixQueues& queues, InstanceLockPaths paths, WatchReadable watchReadable)
    : queues_(queues),
      sessionLockPath_(std::move(paths.session)),
      windowSeat_(std::move(paths.window)),
      watchReadable_(std::move(watchReadable)) {
  // A log pipe whose reader went away costs a line, not the lock.
  ::signal(SIGPIPE, SIG_IGN);
}

void PosixProcess::exit(const ExitStatus& status) {
  static std::atomic_flag leaving;
  if (leaving.test_and_set()) {
    for (;;) ::pause();  // another thread is on its way out already, with its own status
  }
  queues_.drain(DRAIN_LIMIT);
  for (const auto& action : beforeExit_) action(status);
  checkForLeaks();
  std::_Exit(status());
}

void PosixProcess::endWithin(std::optional<Seconds> uptime) {
  const std::lock_guard lock(lastResortMutex_);
  if (!lastResort_) {
    if (!uptime) return;
    sigevent kill{};
    kill.sigev_notify = SIGEV_SIGNAL;
    kill.sigev_signo = SIGKILL;
    timer_t timer{};
    if (::timer_create(CLOCK_MONOTONIC, &kill, &timer) != 0) return;
    lastResort_ = timer;
  }
  itimerspec due{};  // all zero: never
  if (uptime) {
    const auto after = std::chrono::nanoseconds(std::max<std::int64_t>(1, std::llround(*uptime * 1e9)));
    const auto seconds = std::chrono::floor<std::chrono::seconds>(after);
    due.it_value.tv_sec = seconds.count();
    due.it_value.tv_nsec = (after - seconds).count();
  }
  ::timer_settime(*lastResort_, 0, &due, nullptr);
}

std::optional<Seconds> PosixProcess::timeLeft() {
  const std::lock_guard lock(lastResortMutex_);
  itimerspec due{};
  if (!lastResort_ || ::timer_gettime(*lastResort_, &due) != 0) return std::nullopt;
  const Seconds left = static_cast<double>(due.it_value.tv_sec) + static_cast<double>(due.it_value.tv_nsec) / 1e9;
  return left > 0 ? std::optional(left) : std::nullopt;
}

int PosixProcess::processId() const { return ::getpid(); }

unsigned PosixProcess::userId() const { return ::getuid(); }

void PosixProcess::onSignal(int signal, Task handler) {
  const int bell = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  if (bell < 0) return;
  signalEvents.at(static_cast<std::size_t>(signal)) = bell;
  watchReadable_(bell, [bell, handler = std::move(handler)] {
    std::uint64_t count = 0;
    if (::read(bell, &count, sizeof count) == sizeof count) handler();
    return true;
  });
  struct sigaction action {};
  action.sa_handler = ringBell;
  action.sa_flags = SA_RESTART;
  ::sigaction(signal, &action, nullptr);
}

bool PosixProcess::acquireScheduledInstance() {
  FileDescriptor file(::open(sessionLockPath_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  // Without a place to keep the claim nobody else can have it either; not locking would be worse than two locks.
  if (!file.valid()) return true;
  if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) return errno != EWOULDBLOCK;
  sessionLock_ = std::move(file);
  return true;
}

void PosixOutput::print(std::string_view line) { writeLine(STDOUT_FILENO, line); }

void PosixOutput::printError(std::string_view line) { writeLine(STDERR_FILENO, line); }

std::optional<Terminal> PosixOutput::terminal() const {
  if (::isatty(STDOUT_FILENO) == 0) return {};
  Terminal terminal;
  winsize size{};
  // A serial line says 0.
  if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) terminal.columns = size.ws_col;
  const char* kind = std::getenv("TERM");
  const char* noColour = std::getenv("NO_COLOR");
  terminal.highlights = kind != nullptr && std::string_view(kind) != "dumb" && (!noColour || *noColour == '\0');
  return terminal;
}

std::uint64_t PosixRandom::next() {
  std::uint64_t bits = 0;
  // Up to 256 bytes come whole or not at all once the kernel's pool is ready.
  while (::getrandom(&bits, sizeof bits, 0) != sizeof bits) {
    if (errno != EINTR) std::abort();  // no secure randomness: a predictable challenge is worse than none
  }
  return bits;
}

}  // namespace dormel::posix
