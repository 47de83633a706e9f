#include "platform/linux/jobs/JobLaunch.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "platform/linux/freedesktop/AutostartEntry.h"
#include "platform/linux/freedesktop/TextFile.h"
#include "platform/linux/jobs/SessionEnvironment.h"

namespace dormel::jobs {
namespace {

void appendTo(const std::string& path, int stream) {
  if (path.empty()) return;
  freedesktop::createFolders(path.substr(0, path.rfind('/')));
  // Not to wait for the reader of a pipe that somebody put there; a file knows no difference.
  const int file = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOCTTY | O_NONBLOCK, 0666);
  if (file < 0) return;
  if (file == stream) return;
  ::dup2(file, stream);
  ::close(file);
}

/// Only what the file system says is not there is gone. Any other error is a disk's or a server's bad moment, in which
/// the lock must come back all the same.
bool isGone(const std::string& path) {
  return ::access(path.c_str(), F_OK) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

}  // namespace

std::optional<std::string> reasonNotToStart(const std::string& label, const std::string& propertyList,
                                            const std::string& program, const SessionDisplays& others) {
  if (freedesktop::AutostartEntry(label).state() == freedesktop::AutostartEntry::Switch::off)
    return "switched off by the user";
  if (isGone(propertyList)) return "its property list is gone: " + propertyList;
  if (isGone(program)) return "its program is gone: " + program;
  if (!namesDisplay(sessionEnvironment()) && others().empty()) return "no graphical session";
  return {};
}

int becomeJob(const Job& job, const SessionDisplays& others) {
  appendTo(job.standardOutput, STDOUT_FILENO);
  appendTo(job.standardError, STDERR_FILENO);
  waitForDisplay(job.displayName(), others);
  std::vector<char*> arguments;
  arguments.reserve(job.arguments.size() + 1);
  for (const std::string& argument : job.arguments) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  ::execv(job.program().c_str(), arguments.data());
  return errno;
}

}  // namespace dormel::jobs
