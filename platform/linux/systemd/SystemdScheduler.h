// Jobs as units of the user's service manager: a service, and a timer for the start time. See jobs/Scheduler.h for what
// the calls promise.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/linux/jobs/Job.h"
#include "platform/linux/jobs/Scheduler.h"
#include "platform/linux/systemd/UserManager.h"

namespace dormel::jobs::systemd {

class SystemdScheduler {
 public:
  /// `launcher`: path of the program that the units start jobs through.
  explicit SystemdScheduler(std::string launcher);

  /// Whether a manager answers that can keep our jobs. Creates the folder of unit files to ask about it.
  [[nodiscard]] bool available();

  [[nodiscard]] std::optional<JobReport> find(const std::string& label);
  [[nodiscard]] std::optional<JobError> load(const Job& job);
  [[nodiscard]] bool unload(const std::string& label);

 private:
  std::string launcher_;
  std::string folder_;                    ///< of the user's unit files
  std::unique_ptr<UserManager> manager_;  ///< null when there is none
};

}  // namespace dormel::jobs::systemd
