// Jobs kept by supervisors of ours: the way where no service manager answers.
#pragma once

#include <string>

#include "platform/linux/jobs/Scheduler.h"

namespace dormel::jobs::supervisor {

class SupervisorScheduler : public Scheduler {
 public:
  /// `launcher`: path of the program whose subcommand "supervise" is the supervisor.
  explicit SupervisorScheduler(std::string launcher);

  [[nodiscard]] std::optional<JobReport> find(const std::string& label) override;
  [[nodiscard]] std::optional<JobError> load(const Job& job) override;
  [[nodiscard]] bool unload(const std::string& label) override;

 private:
  std::string launcher_;
};

/// The supervisor's own life, from its first instruction to its exit status. Writes one byte to `ready`, and
/// closes it, once it answers callers.
int supervise(const std::string& propertyList, int ready);

}  // namespace dormel::jobs::supervisor
