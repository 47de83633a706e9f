#include "platform/linux/supervisor/SupervisorScheduler.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <utility>
#include <variant>

#include "platform/linux/jobs/ProcessTable.h"
#include "platform/linux/jobs/SessionEnvironment.h"
#include "platform/linux/jobs/StartCalendar.h"
#include "platform/linux/supervisor/JobLock.h"
#include "platform/linux/supervisor/JobProcess.h"

namespace dormel::jobs::supervisor {
namespace {

// The descriptor that a new supervisor announces itself on.
constexpr int READY = 3;

/// Its job goes on, with nobody to look after it.
void endSupervisor(const JobLock& lock) {
  while (const auto holder = lock.holder()) {
    killProcess(*holder, [&] { return lock.holder() == holder; });
  }
}

/// Leaves the caller's session, terminal, folder and streams behind, keeping only `ready` open.
void detach(int ready) {
  ::setsid();
  if (::fork() != 0) ::_exit(0);  // the session's leader could get a terminal again
  if (::chdir("/") != 0) errno = 0;
  const int nothing = ::open("/dev/null", O_RDWR);
  for (int stream = 0; stream <= 2; ++stream) ::dup2(nothing, stream);
  if (ready != READY) ::dup2(ready, READY);
  ::fcntl(READY, F_SETFD, 0);
  ::close_range(READY + 1, ~0U, 0);
}

/// Whether the supervisor goes by the list as it is now, and by the display that this process would give it.
bool isMeant(pid_t supervisor, const JobReport& report) {
  const auto read = readJob(valueIn(report, "path"));
  const Job* job = std::get_if<Job>(&read);
  return job != nullptr && valueIn(report, "start") == (job->start ? clockText(*job->start) : "") &&
         !runsOnAnotherDisplay(supervisor, sessionEnvironment());
}

}  // namespace

SupervisorScheduler::SupervisorScheduler(std::string launcher) : launcher_(std::move(launcher)) {}

std::optional<JobReport> SupervisorScheduler::find(const std::string& label) const {
  const JobLock lock(label);
  const auto supervisor = lock.holder();
  if (!supervisor) return {};
  JobReport report = lock.read();
  if (!isMeant(*supervisor, report)) return {};
  return report;
}

std::optional<JobError> SupervisorScheduler::load(const Job& job) const {
  const JobLock lock(job.label);
  if (const auto holder = lock.holder()) {
    adoptSessionEnvironment(keepingDisplay(sessionEnvironment(), environmentOf(*holder)));
    endSupervisor(lock);
  }
  int pipe[2];
  if (::pipe2(pipe, O_CLOEXEC) != 0) return JobError{"no supervisor can be started"};
  const pid_t child = ::fork();
  if (child == 0) {
    detach(pipe[1]);
    ::execl(launcher_.c_str(), launcher_.c_str(), "supervise", job.propertyList.c_str(), std::to_string(READY).c_str(),
            nullptr);
    ::_exit(1);
  }
  ::close(pipe[1]);
  char byte = 0;
  ssize_t count = 0;
  do {
    count = child < 0 ? 0 : ::read(pipe[0], &byte, 1);
  } while (count < 0 && errno == EINTR);
  ::close(pipe[0]);
  if (child > 0) ::waitpid(child, nullptr, 0);
  if (count != 1) return JobError{"no supervisor can be started"};
  return {};
}

bool SupervisorScheduler::unload(const std::string& label) const {
  JobLock lock(label);
  if (!lock.exists()) return false;
  do {
    endSupervisor(lock);
  } while (!lock.claim() && lock.holder());
  JobProcess process;
  if (process.adopt(lock.read()) && !descendsFrom(::getpid(), process.id())) process.stop();
  lock.clear();
  return true;
}

}  // namespace dormel::jobs::supervisor
