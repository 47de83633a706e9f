#include "platform/linux/supervisor/SupervisorScheduler.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <utility>
#include <variant>

#include "platform/linux/jobs/ProcessTable.h"
#include "platform/linux/jobs/SessionEnvironment.h"
#include "platform/linux/supervisor/JobProcess.h"
#include "platform/linux/supervisor/Supervisor.h"
#include "platform/linux/supervisor/SupervisorPlace.h"
#include "platform/linux/supervisor/Wire.h"

namespace dormel::jobs::supervisor {
namespace {

// Longer than a supervisor takes to stop a job that will not end.
constexpr int ANSWER_TIMEOUT_S = 15;

// The descriptor that a new supervisor announces itself on.
constexpr int READY = 3;

/// The answer of the supervisor of `label`; nothing when none answers.
std::optional<Words> ask(const std::string& label, const Words& question) {
  const posix::FileDescriptor connection = SupervisorPlace(label).connect();
  if (!connection.valid() || !sendWords(connection.get(), question)) return {};
  return receiveWords(connection.get(), ANSWER_TIMEOUT_S);
}

bool succeeded(const std::optional<Words>& answer) { return answer && answer->front() == std::to_string(status::ok); }

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

}  // namespace

SupervisorScheduler::SupervisorScheduler(std::string launcher) : launcher_(std::move(launcher)) {}

std::optional<JobReport> SupervisorScheduler::find(const std::string& label) {
  const auto answer = ask(label, {verb::print});
  if (!succeeded(answer)) return {};
  JobReport report;
  for (std::size_t i = 1; i + 1 < answer->size(); i += 2) report.emplace_back((*answer)[i], (*answer)[i + 1]);
  for (const auto& [name, value] : report) {
    if (name == "path" && ::access(value.c_str(), F_OK) != 0) return {};
  }
  return report;
}

std::optional<JobError> SupervisorScheduler::load(const Job& job) {
  Words question{verb::load, job.propertyList};
  const Words session = sessionEnvironment();
  question.insert(question.end(), session.begin(), session.end());
  if (const auto answer = ask(job.label, question)) {
    if (succeeded(answer)) return {};
    return JobError{answer->size() > 1 ? (*answer)[1] : "the supervisor refuses the job"};
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

bool SupervisorScheduler::unload(const std::string& label) {
  if (const auto answer = ask(label, {verb::unload})) return succeeded(answer);
  // A supervisor that was killed leaves its job behind, and its place to whoever claims it.
  SupervisorPlace place(label);
  if (::access(place.folder().c_str(), F_OK) != 0 || !place.claim()) return false;
  JobProcess process;
  const auto orphan = place.livingProcess();
  if (orphan && !descendsFrom(::getpid(), orphan->process) && process.adopt(*orphan)) process.stop();
  place.clear();
  return true;
}

int supervise(const std::string& propertyList, int ready) {
  auto read = readJob(propertyList);
  if (std::holds_alternative<JobError>(read)) return status::ioError;
  Job job = std::move(std::get<Job>(read));
  SupervisorPlace place(job.label);
  if (!place.claim()) return status::alreadyLoaded;
  ::signal(SIGHUP, SIG_IGN);
  ::signal(SIGINT, SIG_IGN);
  ::signal(SIGPIPE, SIG_IGN);
  ::fcntl(ready, F_SETFD, FD_CLOEXEC);
  Supervisor supervisor(std::move(job), place);
  supervisor.begin();
  if (::write(ready, "1", 1) < 0) errno = 0;
  ::close(ready);
  supervisor.run();
  place.clear();
  return status::ok;
}

}  // namespace dormel::jobs::supervisor
