#include "platform/linux/supervisor/JobProcess.h"

#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>

#include "platform/linux/freedesktop/BaseDirectories.h"
#include "platform/linux/freedesktop/TextFile.h"
#include "platform/linux/jobs/ProcessTable.h"

namespace dormel::jobs::supervisor {
namespace {

constexpr int STOP_LIMIT_MS = 5000;

// The C library's own wrappers cannot be linked from C++ in its version 2.36.
posix::FileDescriptor openProcess(pid_t process) {
  return posix::FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
}
void signalProcess(int handle, int signal) { ::syscall(SYS_pidfd_send_signal, handle, signal, nullptr, 0); }

bool endsWithin(int handle, int milliseconds) {
  pollfd entry{handle, POLLIN, 0};
  int result = 0;
  do {
    result = ::poll(&entry, 1, milliseconds);
  } while (result < 0 && errno == EINTR);
  return result > 0;
}

/// What names one process and no later one: process ids start anew when the machine does.
std::string birthOf(pid_t process) {
  const auto ticks = processStartTicks(process);
  std::string boot = freedesktop::readTextFile("/proc/sys/kernel/random/boot_id").value_or("");
  if (boot.ends_with('\n')) boot.pop_back();
  return ticks ? std::to_string(*ticks) + " " + boot : std::string();
}

[[noreturn]] void runChild(const Job& job, const SessionDisplays& displays) {
  ::setsid();
  // What the supervisor changed for itself is not the job's.
  for (int signal = 1; signal < NSIG; ++signal) ::signal(signal, SIG_DFL);
  // A job that waits for its display is a copy of the supervisor for that long.
  constexpr unsigned firstBeyondStreams = 3;
  ::close_range(firstBeyondStreams, ~0U, 0);
  if (::chdir(freedesktop::homeDirectory().c_str()) != 0) errno = 0;
  errno = becomeJob(job, displays);
  std::perror(job.program().c_str());
  ::_exit(127);
}

}  // namespace

bool JobProcess::start(const Job& job, const SessionDisplays& displays) {
  forget();
  const pid_t child = ::fork();
  if (child == 0) runChild(job, displays);
  if (child < 0) return false;
  id_ = child;
  child_ = true;
  handle_ = openProcess(child);
  if (handle_.valid()) return true;
  // Without a handle we would never learn of its end; better none than one that nobody looks after.
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  forget();
  return false;
}

bool JobProcess::adopt(const JobReport& report) {
  forget();
  const std::string pid = valueIn(report, "pid");
  const std::string birth = valueIn(report, "birth");
  std::from_chars(pid.data(), pid.data() + pid.size(), id_);
  if (id_ <= 1) return false;
  handle_ = openProcess(id_);
  // The id may have passed to another process before the handle was opened, but not since.
  if (handle_.valid() && !birth.empty() && birthOf(id_) == birth && !endsWithin(handle_.get(), 0)) return true;
  forget();
  return false;
}

void JobProcess::describe(JobReport& report) const {
  if (!running()) return;
  report.emplace_back("pid", std::to_string(id_));
  report.emplace_back("birth", birthOf(id_));
}

std::optional<std::string> JobProcess::reap() {
  if (!running() || !endsWithin(handle_.get(), 0)) return {};
  siginfo_t info{};
  const bool known = child_ && ::waitid(P_PIDFD, static_cast<id_t>(handle_.get()), &info, WEXITED | WNOHANG) == 0;
  forget();
  if (!known) return "unknown";
  return (info.si_code == CLD_EXITED ? "exit code " : "signal ") + std::to_string(info.si_status);
}

void JobProcess::stop() {
  if (!running()) return;
  signalProcess(handle_.get(), SIGTERM);
  if (!endsWithin(handle_.get(), STOP_LIMIT_MS)) signalProcess(handle_.get(), SIGKILL);
  (void)endsWithin(handle_.get(), STOP_LIMIT_MS);
  (void)reap();
  forget();
}

void JobProcess::forget() {
  handle_.reset();
  id_ = 0;
  child_ = false;
}

void killProcess(pid_t process, const std::function<bool()>& isStill) {
  const auto handle = openProcess(process);
  if (!handle.valid() || !isStill()) return;
  signalProcess(handle.get(), SIGKILL);
  (void)endsWithin(handle.get(), STOP_LIMIT_MS);
}

}  // namespace dormel::jobs::supervisor
