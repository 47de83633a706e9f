#include "platform/linux/posix/PosixChildProcesses.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <optional>

#include "platform/linux/posix/FileDescriptor.h"
#include "platform/linux/posix/Spawn.h"

namespace dormel::posix {
namespace {

constexpr std::size_t HEARD_AT_MOST = 4096;

struct Pipe {
  FileDescriptor readEnd, writeEnd;
};

std::optional<Pipe> makePipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return {};
  return Pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

std::int32_t statusOf(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return -1;
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

/// What comes out of the pipe until its last writer is gone.
std::string readAll(int fd) {
  std::string text;
  std::array<char, 1024> part{};
  for (;;) {
    const ssize_t got = ::read(fd, part.data(), part.size());
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return text.substr(0, HEARD_AT_MOST);
    if (text.size() < HEARD_AT_MOST) text.append(part.data(), static_cast<std::size_t>(got));
  }
}

[[noreturn]] void giveUp(int report) {
  const int failure = errno;
  static_cast<void>(!::write(report, &failure, sizeof failure));
  ::_exit(127);
}

/// Between the fork and the exec of a process with threads: nothing here may allocate or take a lock.
[[noreturn]] void becomeDetached(const char* path, char* const* arguments, int report) {
  ::setsid();
  // A second fork: nobody has to reap the tool, and it can never get a controlling terminal.
  const pid_t tool = ::fork();
  if (tool < 0) giveUp(report);
  if (tool > 0) ::_exit(0);
  const int nothing = ::open("/dev/null", O_RDWR);
  for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::dup2(nothing, fd);
  if (nothing > STDERR_FILENO) ::close(nothing);
  static_cast<void>(!::chdir("/"));
  ::signal(SIGPIPE, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  ::execve(path, arguments, environ);
  giveUp(report);
}

}  // namespace

std::string PosixChildProcesses::toolPath(const std::string& tool) const {
  const auto place = tools_.find(tool);
  return place == tools_.end() ? tool : place->second;
}

std::int32_t PosixChildProcesses::run(const std::string& tool, const std::vector<std::string>& arguments) {
  const pid_t child = spawn(toolPath(tool), arguments, {});
  return child < 0 ? -1 : statusOf(child);
}

PosixChildProcesses::Outcome PosixChildProcesses::runHearingErrors(const std::string& tool,
                                                                   const std::vector<std::string>& arguments) {
  auto pipe = makePipe();
  if (!pipe) return {run(tool, arguments), {}};
  const pid_t child = spawn(toolPath(tool), arguments, {-1, pipe->writeEnd.get()});
  pipe->writeEnd.reset();
  if (child < 0) return {};
  std::string errors = readAll(pipe->readEnd.get());
  return {statusOf(child), std::move(errors)};
}

bool PosixChildProcesses::start(const std::string& tool, const std::vector<std::string>& arguments) {
  const std::string path = toolPath(tool);
  const std::vector<char*> array = argumentArray(path, arguments);
  auto report = makePipe();
  if (!report) return false;
  const pid_t middle = ::fork();
  if (middle < 0) return false;
  if (middle == 0) becomeDetached(path.c_str(), array.data(), report->writeEnd.get());
  report->writeEnd.reset();
  statusOf(middle);
  return readAll(report->readEnd.get()).empty();  // the exec closed it without a word
}

}  // namespace dormel::posix
