#include "platform/linux/supervisor/JobProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>

#include "platform/linux/freedesktop/BaseDirectories.h"
#include "platform/linux/jobs/JobLaunch.h"
#include "platform/linux/jobs/ProcessTable.h"

namespace dormel::jobs::supervisor {
namespace {

constexpr int STOP_LIMIT_MS = 5000;

// The C library's own wrappers cannot be linked from C++ in its version 2.36.
posix::FileDescriptor openProcess(pid_t process) {
  return posix::FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
}
void signalProcess(int handle, int signal) { ::syscall(SYS_pidfd_send_signal, handle, signal, nullptr, 0); }

/// What the supervisor changed for itself is not the job's.
void resetSignals() {
  for (int signal = 1; signal < NSIG; ++signal) ::signal(signal, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

[[noreturn]] void runChild(const Job& job, const std::vector<std::string>& environment) {
  ::setsid();
  resetSignals();
  // A job that waits for its display is a copy of the supervisor for that long, and must not answer its callers.
  constexpr unsigned firstBeyondStreams = 3;
  ::close_range(firstBeyondStreams, ~0U, 0);
  std::vector<char*> entries;
  entries.reserve(environment.size() + 1);
  for (const std::string& entry : environment) entries.push_back(const_cast<char*>(entry.c_str()));
  entries.push_back(nullptr);
  environ = entries.data();
  if (::chdir(freedesktop::homeDirectory().c_str()) != 0) errno = 0;
  errno = becomeJob(job);
  std::perror(job.program().c_str());
  ::_exit(127);
}

}  // namespace

bool JobProcess::start(const Job& job, const std::vector<std::string>& environment) {
  forget();
  const pid_t child = ::fork();
  if (child == 0) runChild(job, environment);
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

bool JobProcess::adopt(const ProcessRecord& process) {
  forget();
  handle_ = openProcess(process.process);
  if (!handle_.valid()) return false;
  id_ = process.process;
  // The id may have passed to another process before the handle was opened, but not since.
  if (processStartTicks(process.process) == process.startTicks) return true;
  forget();
  return false;
}

std::optional<ProcessRecord> JobProcess::record() const {
  if (!running()) return {};
  const auto ticks = processStartTicks(id_);
  if (!ticks) return {};
  return ProcessRecord{id_, *ticks};
}

std::optional<Ending> JobProcess::reap() {
  if (!running()) return {};
  if (!child_) {
    pollfd entry{handle_.get(), POLLIN, 0};
    if (::poll(&entry, 1, 0) <= 0) return {};
    forget();
    return Ending{false, false, 0};
  }
  siginfo_t info{};
  if (::waitid(P_PIDFD, static_cast<id_t>(handle_.get()), &info, WEXITED | WNOHANG) != 0 || info.si_pid == 0) return {};
  forget();
  return Ending{true, info.si_code != CLD_EXITED, info.si_status};
}

void JobProcess::stop() {
  if (!running()) return;
  const auto ended = [&](int limit) {
    pollfd entry{handle_.get(), POLLIN, 0};
    int result = 0;
    do {
      result = ::poll(&entry, 1, limit);
    } while (result < 0 && errno == EINTR);
    return result > 0;
  };
  signalProcess(handle_.get(), SIGTERM);
  if (!ended(STOP_LIMIT_MS)) {
    signalProcess(handle_.get(), SIGKILL);
    (void)ended(STOP_LIMIT_MS);
  }
  (void)reap();
  forget();
}

void JobProcess::forget() {
  handle_.reset();
  id_ = 0;
  child_ = false;
}

}  // namespace dormel::jobs::supervisor
