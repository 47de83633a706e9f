#include "platform/linux/supervisor/Supervisor.h"

#include <poll.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <utility>
#include <variant>

#include "platform/linux/jobs/JobLaunch.h"
#include "platform/linux/jobs/ProcessTable.h"
#include "platform/linux/jobs/Scheduler.h"
#include "platform/linux/jobs/SessionEnvironment.h"

namespace dormel::jobs::supervisor {
namespace {

constexpr int RESTART_PAUSE_S = 1;
constexpr int QUESTION_TIMEOUT_S = 1;

std::vector<std::string> ownEnvironment() {
  std::vector<std::string> entries;
  for (char** entry = environ; *entry != nullptr; ++entry) entries.emplace_back(*entry);
  return entries;
}

std::string localTimeText(std::time_t moment) {
  std::tm local{};
  localtime_r(&moment, &local);
  std::array<char, 64> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S %Z", &local);
  return text.data();
}

void drain(int descriptor) {
  std::array<char, 4096> bytes{};
  while (::read(descriptor, bytes.data(), bytes.size()) > 0) continue;
}

}  // namespace

Supervisor::Supervisor(Job job, SupervisorPlace& place)
    : job_(std::move(job)),
      place_(place),
      restartTimer_(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)),
      placeWatch_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
  watchPlace();
}

void Supervisor::begin() {
  if (const auto left = place_.livingProcess()) (void)process_.adopt(*left);
  load(sessionEnvironment());
}

void Supervisor::load(const Words& sessionChanges) {
  loaded_ = true;
  adoptSessionEnvironment(sessionChanges);
  startTimer_.arm(job_.start);
  if (!job_.runAtLoad) return;
  if (process_.running() && runsOnAnotherDisplay(process_.id(), sessionChanges)) process_.stop();
  startJob();
}

void Supervisor::startJob() {
  if (process_.running()) return;
  pausing_ = false;
  if (const auto reason = reasonNotToStart(job_.label, job_.propertyList, job_.program())) {
    lastEnding_ = "not started: " + *reason;
    place_.record({});
    return;
  }
  if (!process_.start(job_, ownEnvironment())) {
    pauseBeforeRestart();
    return;
  }
  place_.record(process_.record());
}

void Supervisor::pauseBeforeRestart() {
  itimerspec pause{};
  pause.it_value.tv_sec = RESTART_PAUSE_S;
  ::timerfd_settime(restartTimer_.get(), 0, &pause, nullptr);
  pausing_ = true;
}

void Supervisor::jobEnded(const Ending& ending) {
  place_.record({});
  if (!ending.known) {
    lastEnding_ = "unknown";
  } else {
    lastEnding_ = (ending.bySignal ? "signal " : "exit code ") + std::to_string(ending.code);
  }
  const bool again =
      job_.restart == Restart::always || (job_.restart == Restart::unlessSuccessful && !ending.successful());
  if (loaded_ && again) pauseBeforeRestart();
}

void Supervisor::run() {
  while (loaded_ || process_.running()) {
    enum { caller, job, restart, clock, zone, place, count };
    std::array<pollfd, count> events{{{place_.listener(), POLLIN, 0},
                                      {process_.handle(), POLLIN, 0},
                                      {restartTimer_.get(), POLLIN, 0},
                                      {startTimer_.clock(), POLLIN, 0},
                                      {startTimer_.zone(), POLLIN, 0},
                                      {placeWatch_.get(), POLLIN, 0}}};
    if (::poll(events.data(), events.size(), -1) < 0 && errno != EINTR) return;
    // The job's end first: what follows asks whether it runs.
    if (events[job].revents != 0) {
      if (const auto ending = process_.reap()) jobEnded(*ending);
    }
    if (events[restart].revents != 0) {
      drain(restartTimer_.get());
      if (loaded_ && pausing_) startJob();
    }
    if ((events[clock].revents | events[zone].revents) != 0 && startTimer_.due() && loaded_) startJob();
    if (events[place].revents != 0) placeVanished();
    if (events[caller].revents != 0) answerCaller();
  }
}

void Supervisor::answerCaller() {
  const posix::FileDescriptor connection(::accept4(place_.listener(), nullptr, nullptr, SOCK_CLOEXEC));
  if (!connection.valid()) return;
  ucred credentials{};
  socklen_t length = sizeof credentials;
  const bool known = ::getsockopt(connection.get(), SOL_SOCKET, SO_PEERCRED, &credentials, &length) == 0 &&
                     (credentials.uid == ::getuid() || credentials.uid == 0);
  if (known) {
    if (const auto question = receiveWords(connection.get(), QUESTION_TIMEOUT_S)) {
      const Words reply = answer(*question, credentials.pid);
      // Whoever hears that the job is gone may load it again at once, and finds the place free.
      if (!loaded_ && !process_.running()) place_.clear();
      sendWords(connection.get(), reply);
    }
  }
}

Words Supervisor::answer(const Words& question, pid_t caller) {
  const std::string& first = question.front();
  if (first == verb::print) return loaded_ ? report() : Words{std::to_string(status::couldNotFind)};
  if (first == verb::unload) {
    if (!loaded_) return {std::to_string(status::noSuchJob)};
    unload(caller);
    return {std::to_string(status::ok)};
  }
  if (first == verb::load && question.size() >= 2) {
    auto read = readJob(question[1]);
    if (const auto* error = std::get_if<JobError>(&read)) {
      return {std::to_string(status::ioError), error->message};
    }
    job_ = std::move(std::get<Job>(read));
    load(Words(question.begin() + 2, question.end()));
    return {std::to_string(status::ok)};
  }
  return {std::to_string(status::usage)};
}

Words Supervisor::report() const {
  Words words{std::to_string(status::ok), "scheduler", "supervisor " + std::to_string(::getpid()), "path",
              job_.propertyList,          "state"};
  words.emplace_back(process_.running() ? "running" : pausing_ ? "auto-restart" : "waiting");
  if (process_.running()) words.insert(words.end(), {"pid", std::to_string(process_.id())});
  if (!lastEnding_.empty()) words.insert(words.end(), {"last end", lastEnding_});
  if (startTimer_.next()) words.insert(words.end(), {"next start", localTimeText(*startTimer_.next())});
  return words;
}

void Supervisor::unload(pid_t caller) {
  loaded_ = false;
  pausing_ = false;
  startTimer_.arm({});
  if (!process_.running() || descendsFrom(caller, process_.id())) return;
  process_.stop();
  place_.record({});
}

void Supervisor::watchPlace() {
  ::inotify_add_watch(placeWatch_.get(), place_.folder().c_str(), IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR);
  ::inotify_add_watch(placeWatch_.get(), (place_.folder() + "/socket").c_str(),
                      IN_DELETE_SELF | IN_MOVE_SELF | IN_ATTRIB);
}

void Supervisor::placeVanished() {
  drain(placeWatch_.get());
  // Nobody could find us any more, and the next caller would set a second supervisor beside us. If another one
  // has taken the place already, it has the job too.
  if (::access((place_.folder() + "/socket").c_str(), F_OK) == 0) return;
  if (!place_.claim()) std::_Exit(status::ok);
  watchPlace();
  place_.record(process_.record());
}

}  // namespace dormel::jobs::supervisor
