// The one process of a job: a child of ours, or one that a killed supervisor left behind.
#pragma once

#include <sys/types.h>

#include <functional>
#include <optional>
#include <string>

#include "platform/linux/jobs/JobLaunch.h"
#include "platform/linux/posix/FileDescriptor.h"
#include "platform/linux/supervisor/JobLock.h"

namespace dormel::jobs::supervisor {

class JobProcess {
 public:
  /// Starts the job's program in a session of its own. False when the system has no process for it now.
  [[nodiscard]] bool start(const Job& job, const SessionDisplays& displays);
  /// Looks after the process that a report speaks of. False when that has ended.
  bool adopt(const JobReport& report);

  [[nodiscard]] bool running() const { return handle_.valid(); }
  [[nodiscard]] pid_t id() const { return id_; }
  /// Becomes readable when the process has ended; -1 when none runs.
  [[nodiscard]] int handle() const { return handle_.get(); }
  /// Adds what `adopt` needs.
  void describe(JobReport& report) const;

  /// How it ended ("exit code 1", "signal 9"); nothing while it runs. Nobody tells how another's child did: "unknown".
  [[nodiscard]] std::optional<std::string> reap();
  /// A termination signal, five seconds later the kill; waits for the end.
  void stop();

 private:
  void forget();

  pid_t id_ = 0;
  posix::FileDescriptor handle_;
  bool child_ = false;
};

/// Ends a process at once and waits for it, unless `isStill` denies that it is the one that is meant.
void killProcess(pid_t process, const std::function<bool()>& isStill);

}  // namespace dormel::jobs::supervisor
