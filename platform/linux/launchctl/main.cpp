// The job scheduler's command line.
//
//   launchctl bootstrap <domain> <property list>   loads a job
//   launchctl bootout <domain>/<label>             unloads it and ends its process
//   launchctl print <domain>/<label>               tells about a loaded job
//
// The domain is "gui/" and the caller's user id. Jobs are kept by the user's service manager where one answers,
// else by a supervisor. Loading a job also arms it for later logins: its autostart entry calls
//
//   launchctl login <domain> <property list>       loads the job into this session, or starts it there
//
// The schedulers in turn call these:
//
//   launchctl permit <label> <property list> <program>                          whether the job may start now
//   launchctl exec <output log | -> <error log | -> <program> [argument ...]    becomes the job
//   launchctl supervise <property list> <descriptor>                            becomes its supervisor
//
// Exit status: 0; 3 bootout knows no such job; 5 the property list cannot be read, or the job not be set up;
// 37 the job is loaded already; 64 wrong usage; 113 print or login cannot find the job; 125 the user has switched
// the job off. permit answers 1 for no, exec the usual 126 or 127 when the program cannot be started.
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/linux/freedesktop/AppBundle.h"
#include "platform/linux/freedesktop/AutostartEntry.h"
#include "platform/linux/jobs/Job.h"
#include "platform/linux/jobs/JobLaunch.h"
#include "platform/linux/jobs/LaunchctlCommand.h"
#include "platform/linux/jobs/Scheduler.h"
#include "platform/linux/posix/Environment.h"
#include "platform/linux/supervisor/Supervisor.h"
#include "platform/linux/supervisor/SupervisorScheduler.h"
#include "platform/linux/systemd/SessionDisplays.h"
#include "platform/linux/systemd/SystemdScheduler.h"

namespace dormel::jobs {
namespace {

using Arguments = std::vector<std::string>;

/// The copy of this program that comes with the job's own bundle, so that a job which was moved, or is being moved by
/// another copy, depends on nothing but its own; this one where the job brings none.
std::string launcherFor(const Job& job) {
  if (const auto bundle = freedesktop::bundleOfExecutable(job.program())) {
    std::string launcher = *bundle + "/Contents/Helpers/launchctl";
    if (::access(launcher.c_str(), X_OK) == 0) return launcher;
  }
  return posix::executableOf();
}

std::string ownDomain() { return "gui/" + std::to_string(::getuid()); }

int fail(int code, const std::string& what, const std::string& detail) {
  std::fprintf(stderr, "launchctl: %s: %s (%d)\n", what.c_str(), detail.c_str(), code);
  return code;
}

int usage() {
  std::fprintf(stderr,
               "usage: launchctl bootstrap <domain> <property list>\n"
               "       launchctl bootout <domain>/<label>\n"
               "       launchctl print <domain>/<label>\n"
               "       launchctl login <domain> <property list>\n"
               "<domain> is %s\n",
               ownDomain().c_str());
  return status::usage;
}

class Schedulers {
 public:
  /// `launcher` is what the schedulers call to start a job that they are given.
  explicit Schedulers(std::string launcher = posix::executableOf()) : launcher_(std::move(launcher)) {}

  /// What there is to tell about a job that is loaded whole: known to a scheduler, and armed for later logins.
  std::optional<JobReport> find(const std::string& label) {
    if (freedesktop::AutostartEntry(label).state() != freedesktop::AutostartEntry::Switch::on) return {};
    auto report = systemd_.find(label);
    if (!report) report = supervisor_.find(label);
    return report && canStart(*report) ? report : std::nullopt;
  }

  std::optional<JobError> load(const Job& job) {
    const freedesktop::AutostartEntry::Content entry{job.displayName(),
                                                     {launcher_, "login", ownDomain(), job.propertyList}};
    if (const auto error = freedesktop::AutostartEntry(job.label).write(entry)) {
      return JobError{"cannot write the autostart entry: " + error->message};
    }
    if (!systemd_.available()) return supervisor_.load(job);
    (void)supervisor_.unload(job.label);  // from a login at which no manager answered
    return systemd_.load(job);
  }

  bool unload(const std::string& label) {
    bool found = systemd_.unload(label);
    found = supervisor_.unload(label) || found;
    return freedesktop::AutostartEntry(label).removeUnlessSwitchedOff() || found;
  }

 private:
  /// A job whose program was moved away is not loaded in any sense that helps its user.
  static bool canStart(const JobReport& report) {
    const auto read = readJob(valueIn(report, "path"));
    const Job* job = std::get_if<Job>(&read);
    return job != nullptr && ::access(job->program().c_str(), X_OK) == 0;
  }

  std::string launcher_;
  systemd::SystemdScheduler systemd_{launcher_};
  supervisor::SupervisorScheduler supervisor_{launcher_};
};

/// `bootstrap` loads what is not loaded; `login` arms again what may be.
int arm(const std::string& verb, const std::string& path) {
  const bool isLogin = verb == "login";
  if (isLogin && ::access(path.c_str(), F_OK) != 0) return fail(status::couldNotFind, verb, "no such file: " + path);
  const auto read = readJob(path);
  if (const auto* error = std::get_if<JobError>(&read)) return fail(status::ioError, verb, error->message);
  const Job& job = std::get<Job>(read);
  if (freedesktop::AutostartEntry(job.label).state() == freedesktop::AutostartEntry::Switch::off) {
    return fail(status::switchedOff, verb, "switched off by the user: " + job.label);
  }
  Schedulers schedulers(launcherFor(job));
  if (!isLogin && schedulers.find(job.label)) {
    return fail(status::alreadyLoaded, verb, "already loaded: " + job.label);
  }
  if (const auto error = schedulers.load(job)) return fail(status::ioError, verb, error->message);
  return status::ok;
}

int bootout(const std::string& label) {
  if (!Schedulers().unload(label)) return fail(status::noSuchJob, "bootout", "no such job: " + label);
  return status::ok;
}

int print(const std::string& label) {
  const auto report = Schedulers().find(label);
  if (!report) return fail(status::couldNotFind, "print", "could not find " + label + " in " + ownDomain());
  std::printf("%s/%s = {\n", ownDomain().c_str(), label.c_str());
  for (const auto& [name, value] : *report) std::printf("\t%s = %s\n", name.c_str(), value.c_str());
  std::printf("}\n");
  return status::ok;
}

int permit(const std::string& label, const std::string& propertyList, const std::string& program) {
  const auto reason = reasonNotToStart(label, propertyList, program, systemd::sessionDisplays);
  if (!reason) return 0;
  std::fprintf(stderr, "%s: not started: %s\n", label.c_str(), reason->c_str());
  return 1;
}

int execute(const LaunchctlCommand& command) {
  Job job;
  job.standardOutput = command.standardOutput;
  job.standardError = command.standardError;
  job.arguments = command.job;
  const int error = becomeJob(job, systemd::sessionDisplays);
  std::fprintf(stderr, "%s: %s\n", job.program().c_str(), std::strerror(error));
  return error == ENOENT ? 127 : 126;
}

int run(const Arguments& arguments) {
  using Verb = LaunchctlCommand::Verb;
  const auto command = parseLaunchctlCommand(arguments, ownDomain());
  if (!command) return usage();
  switch (command->verb) {
    case Verb::bootstrap:
      return arm("bootstrap", command->propertyList);
    case Verb::login:
      return arm("login", command->propertyList);
    case Verb::bootout:
      return bootout(command->label);
    case Verb::print:
      return print(command->label);
    case Verb::permit:
      return permit(command->label, command->propertyList, command->program);
    case Verb::exec:
      return execute(*command);
    case Verb::supervise:
      return supervisor::supervise(command->propertyList, command->descriptor, systemd::sessionDisplays);
  }
  return usage();
}

}  // namespace
}  // namespace dormel::jobs

int main(int count, char** arguments) {
  return dormel::jobs::run(dormel::jobs::Arguments(arguments + (count > 0 ? 1 : 0), arguments + count));
}
