// What every job scheduler offers. Calls block until the job is in the state they promise.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/linux/jobs/Job.h"

namespace dormel::jobs {

/// The helper's exit statuses.
namespace status {
inline constexpr int ok = 0;
inline constexpr int noSuchJob = 3;
inline constexpr int ioError = 5;
inline constexpr int alreadyLoaded = 37;
inline constexpr int usage = 64;
inline constexpr int couldNotFind = 113;
inline constexpr int switchedOff = 125;
}  // namespace status

/// What there is to say about a loaded job, in the order in which it is printed: names and values.
using JobReport = std::vector<std::pair<std::string, std::string>>;

class Scheduler {
 public:
  virtual ~Scheduler() = default;

  /// The job as this scheduler has it; nothing when it is not loaded whole.
  [[nodiscard]] virtual std::optional<JobReport> find(const std::string& label) = 0;

  /// Brings the scheduler to what the job's property list says now, whatever it knew of it before, and hands it
  /// this process's session environment. A job that runs at load then runs; if it was running already it keeps
  /// running, unless it runs on another display. Nothing on success, else why not.
  [[nodiscard]] virtual std::optional<JobError> load(const Job& job) = 0;

  /// Forgets the job and ends its process: a termination signal, five seconds later the kill. A process that
  /// the caller descends from is left to end by itself, without being started again: a job may take itself out
  /// without being cut off half-way. False when there was nothing to forget.
  [[nodiscard]] virtual bool unload(const std::string& label) = 0;
};

}  // namespace dormel::jobs
