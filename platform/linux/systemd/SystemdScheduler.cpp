#include "platform/linux/systemd/SystemdScheduler.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <utility>
#include <variant>

#include "platform/linux/freedesktop/BaseDirectories.h"
#include "platform/linux/freedesktop/TextFile.h"
#include "platform/linux/jobs/ProcessTable.h"
#include "platform/linux/jobs/SessionEnvironment.h"
#include "platform/linux/jobs/StartCalendar.h"
#include "platform/linux/systemd/UnitText.h"

namespace dormel::jobs::systemd {
namespace {

// The units are written anew at every login, so that this is ample.
constexpr int DAYS_AHEAD = 800;

/// The names and files of one job's units.
struct Units {
  Units(const std::string& folder, const std::string& label)
      : service(label + ".service"),
        timer(label + ".timer"),
        serviceFile(folder + "/" + service),
        timerFile(folder + "/" + timer),
        timerLink(folder + "/timers.target.wants/" + timer) {}

  std::string service, timer;
  std::string serviceFile, timerFile;
  std::string timerLink;  ///< what arms the timer whenever the manager starts
};

FileResult updateLink(const std::string& path, const std::string& target, bool& changed) {
  std::array<char, 4096> present{};
  const ssize_t length = ::readlink(path.c_str(), present.data(), present.size());
  if (length > 0 && std::string_view(present.data(), static_cast<std::size_t>(length)) == target) return {};
  changed = true;
  if (auto error = freedesktop::createFolders(path.substr(0, path.rfind('/')))) return error;
  ::unlink(path.c_str());
  if (::symlink(target.c_str(), path.c_str()) != 0) return FileError{std::strerror(errno)};
  return {};
}

/// Of a link, the link: a home on another computer may refuse to follow it.
bool standsThere(const std::string& path) {
  struct stat info {};
  return ::lstat(path.c_str(), &info) == 0;
}

bool removeFile(const std::string& path) { return ::unlink(path.c_str()) == 0; }

/// This process's session as the job in the file is to have it, and the zone by which the job and its timer go. A zone
/// that no calendar line can name is not handed on: both then go by the manager's.
struct Session {
  Session(const std::string& serviceFile, UserManager& manager)
      : environment(
            keepingDisplay(sessionEnvironment(), environmentIn(freedesktop::readTextFile(serviceFile).value_or("")))),
        zone(zoneNamed(valueIn(environment, "TZ"))) {
    if (!zone.empty()) return;
    std::erase_if(environment, [](const std::string& entry) { return entry.starts_with("TZ="); });
    zone = zoneNamed(valueIn(manager.environment(), "TZ"));
  }

  std::vector<std::string> environment;
  std::string zone;
};

/// Whether the units are those of the list as it is now, and for the display that this process would give them.
bool isMeant(UserManager& manager, const std::string& propertyList, const std::string& serviceFile,
             const std::string& timerFile) {
  const auto read = readJob(propertyList);
  const Job* job = std::get_if<Job>(&read);
  const auto service = freedesktop::readTextFile(serviceFile);
  if (job == nullptr || !service) return false;
  const Session session(serviceFile, manager);
  if (namesAnotherDisplay(environmentIn(*service), session.environment)) return false;
  const auto timer = freedesktop::readTextFile(timerFile);
  return job->start ? timer && timer->find(calendarLine(*job->start, session.zone)) != std::string::npos : !timer;
}

}  // namespace

SystemdScheduler::SystemdScheduler(std::string launcher)
    : launcher_(std::move(launcher)),
      folder_(freedesktop::configHome() + "/systemd/user"),
      manager_(UserManager::connect()) {}

bool SystemdScheduler::available() {
  if (!manager_) return false;
  freedesktop::createFolders(folder_);
  return manager_->readsUnitsIn(folder_);
}

std::optional<JobReport> SystemdScheduler::find(const std::string& label) {
  const Units units(folder_, label);
  if (!manager_ || !manager_->readsUnitsIn(folder_)) return {};
  const UnitState service = manager_->unit(units.service);
  const bool timed = ::access(units.timerFile.c_str(), F_OK) == 0;
  const UnitState timer = timed ? manager_->unit(units.timer) : UnitState{};
  // Whatever part of it somebody took away, the job would not do all it promises.
  if (service.load != "loaded" || ::access(units.serviceFile.c_str(), F_OK) != 0 ||
      ::access(service.source.c_str(), F_OK) != 0) {
    return {};
  }
  if (timed && (timer.active != "active" || !standsThere(units.timerLink))) return {};
  if (!isMeant(*manager_, service.source, units.serviceFile, units.timerFile)) return {};

  const ServiceState process = manager_->service(units.service);
  JobReport report{{"scheduler", "systemd --user"}, {"path", service.source}, {"state", service.sub}};
  if (process.mainProcess != 0) report.emplace_back("pid", std::to_string(process.mainProcess));
  if (process.exitCode != 0) {
    report.emplace_back(process.exitCode == CLD_EXITED ? "last exit code" : "last terminating signal",
                        std::to_string(process.exitStatus));
  }
  if (timed)
    report.emplace_back("next start",
                        localTimeText(static_cast<std::time_t>(manager_->nextElapse(units.timer) / 1'000'000)));
  return report;
}

std::optional<JobError> SystemdScheduler::load(const Job& job) {
  if (!available()) return JobError{"no user manager that reads " + folder_};
  const Units units(folder_, job.label);
  const Session session(units.serviceFile, *manager_);
  bool changed = false;
  FileResult error =
      freedesktop::updateTextFile(units.serviceFile, serviceUnit(job, launcher_, session.environment), changed);
  if (job.start) {
    const auto displaced = startsSkippedByClockChange(*job.start, std::time(nullptr), DAYS_AHEAD);
    if (!error) error = freedesktop::updateTextFile(units.timerFile, timerUnit(job, displaced, session.zone), changed);
    if (!error) error = updateLink(units.timerLink, units.timerFile, changed);
  } else if (removeFile(units.timerFile)) {
    changed = true;
    removeFile(units.timerLink);
    manager_->stop(units.timer);
  }
  if (error) return JobError{"cannot write the units in " + folder_ + ": " + error->message};

  const auto unread = [&](const std::string& name) {
    const UnitState unit = manager_->unit(name);
    return unit.load != "loaded" || unit.stale;
  };
  if (changed || unread(units.service) || (job.start && unread(units.timer))) {
    if (!manager_->reload()) return JobError{"the user manager does not read its units"};
  }
  // Where the manager keeps the time of the last start. It would make the folder too, but nobody would take it away.
  if (job.start) freedesktop::createFolders(freedesktop::dataHome() + "/systemd/timers", 0755);
  if (job.start && !(changed ? manager_->restart(units.timer) : manager_->start(units.timer))) {
    return JobError{"the user manager does not arm the timer"};
  }
  if (!job.runAtLoad) return {};
  const pid_t running = manager_->service(units.service).mainProcess;
  if (running != 0 && runsOnAnotherDisplay(running, session.environment)) {
    manager_->restart(units.service);
  } else {
    // Whether this first start succeeds is the service's own business: it is tried again like any later one.
    manager_->start(units.service);
  }
  return {};
}

bool SystemdScheduler::unload(const std::string& label) {
  const Units units(folder_, label);
  const bool ours = manager_ && manager_->readsUnitsIn(folder_);
  if (ours) {
    const pid_t running = manager_->service(units.service).mainProcess;
    const bool callerRunsInIt = running != 0 && descendsFrom(::getpid(), running);
    if (manager_->unit(units.timer).active == "active") manager_->stop(units.timer);
    // What is left running loses its unit below, and with it the restart.
    if (!callerRunsInIt && manager_->unit(units.service).active != "inactive") manager_->stop(units.service);
  }
  bool found = removeFile(units.serviceFile);
  found = removeFile(units.timerFile) || found;
  found = removeFile(units.timerLink) || found;
  removeFile(freedesktop::dataHome() + "/systemd/timers/stamp-" + units.timer);
  if (ours && found) {
    manager_->reload();
    manager_->resetFailed(units.service);
  }
  return found;
}

}  // namespace dormel::jobs::systemd
