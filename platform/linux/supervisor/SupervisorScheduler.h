// Jobs kept by supervisors of ours: the way where no service manager answers. See jobs/Scheduler.h for what the calls
// promise.
#pragma once

#include <optional>
#include <string>

#include "platform/linux/jobs/Job.h"
#include "platform/linux/jobs/Scheduler.h"

namespace dormel::jobs::supervisor {

class SupervisorScheduler {
 public:
  /// `launcher`: path of the program whose subcommand "supervise" is the supervisor.
  explicit SupervisorScheduler(std::string launcher);

  [[nodiscard]] std::optional<JobReport> find(const std::string& label) const;
  [[nodiscard]] std::optional<JobError> load(const Job& job) const;
  [[nodiscard]] bool unload(const std::string& label) const;

 private:
  std::string launcher_;
};

}  // namespace dormel::jobs::supervisor
