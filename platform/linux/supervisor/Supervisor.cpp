#include "platform/linux/supervisor/Supervisor.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <utility>
#include <variant>

#include "platform/linux/jobs/SessionEnvironment.h"
#include "platform/linux/jobs/StartCalendar.h"
#include "platform/linux/supervisor/JobProcess.h"
#include "platform/linux/supervisor/StartTimer.h"

namespace dormel::jobs::supervisor {
namespace {

using Steady = std::chrono::steady_clock;
constexpr auto RESTART_PAUSE = std::chrono::seconds(1);

class Supervisor {
 public:
  Supervisor(Job job, JobLock& lock, const SessionDisplays& displays)
      : job_(std::move(job)), lock_(lock), displays_(displays) {}

  /// Takes over what an earlier supervisor left running, and loads the job.
  void begin() {
    process_.adopt(lock_.read());
    startTimer_.arm(job_.start);
    if (job_.runAtLoad && process_.running() && runsOnAnotherDisplay(process_.id(), sessionEnvironment())) {
      process_.stop();
    }
    if (job_.runAtLoad) start();
    tell();
  }

  [[noreturn]] void run() {
    for (;;) {
      std::array<pollfd, 3> events{
          {{process_.handle(), POLLIN, 0}, {startTimer_.clock(), POLLIN, 0}, {startTimer_.zone(), POLLIN, 0}}};
      (void)::poll(events.data(), events.size(), millisecondsToRestart());
      if (const auto ending = process_.reap()) ended(*ending);
      if (millisecondsToRestart() == 0 || startTimer_.due()) start();
      tell();
    }
  }

 private:
  void start() {
    restart_.reset();
    if (process_.running()) return;
    if (const auto reason = reasonNotToStart(job_.label, job_.propertyList, job_.program(), displays_)) {
      lastEnd_ = "not started: " + *reason;
    } else if (!process_.start(job_, displays_)) {
      restart_ = Steady::now() + RESTART_PAUSE;
    }
  }

  void ended(const std::string& how) {
    lastEnd_ = how;
    const bool again =
        job_.restart == Restart::always || (job_.restart == Restart::unlessSuccessful && how != "exit code 0");
    if (again) restart_ = Steady::now() + RESTART_PAUSE;
  }

  /// -1 for none.
  [[nodiscard]] int millisecondsToRestart() const {
    if (!restart_) return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*restart_ - Steady::now()).count();
    return static_cast<int>(std::max<std::int64_t>(0, left));
  }

  void tell() {
    // Somebody cleared the state folder away. Whoever has the place by now has the job, too.
    if (!lock_.isFound() && !lock_.claim()) std::_Exit(status::ok);
    JobReport report{{"scheduler", "supervisor " + std::to_string(::getpid())},
                     {"path", job_.propertyList},
                     {"state", process_.running() ? "running"
                               : restart_         ? "auto-restart"
                                                  : "waiting"}};
    process_.describe(report);
    if (!lastEnd_.empty()) report.emplace_back("last end", lastEnd_);
    if (job_.start) report.emplace_back("start", clockText(*job_.start));
    if (startTimer_.next()) report.emplace_back("next start", localTimeText(*startTimer_.next()));
    lock_.write(report);
  }

  const Job job_;
  JobLock& lock_;
  const SessionDisplays& displays_;
  JobProcess process_;
  StartTimer startTimer_;
  std::optional<Steady::time_point> restart_;
  std::string lastEnd_;
};

}  // namespace

int supervise(const std::string& propertyList, int ready, const SessionDisplays& displays) {
  auto read = readJob(propertyList);
  if (std::holds_alternative<JobError>(read)) return status::ioError;
  Job job = std::move(std::get<Job>(read));
  JobLock lock(job.label);
  if (!lock.claim()) return status::alreadyLoaded;
  for (const int signal : {SIGHUP, SIGINT, SIGPIPE}) ::signal(signal, SIG_IGN);
  ::fcntl(ready, F_SETFD, FD_CLOEXEC);
  Supervisor supervisor(std::move(job), lock, displays);
  supervisor.begin();
  if (::write(ready, "1", 1) < 0) errno = 0;
  ::close(ready);
  supervisor.run();
}

}  // namespace dormel::jobs::supervisor
