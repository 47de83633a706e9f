// The one process of a job: a child of ours, or one that an earlier supervisor left behind.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "platform/linux/jobs/Job.h"
#include "platform/linux/posix/FileDescriptor.h"
#include "platform/linux/supervisor/SupervisorPlace.h"

namespace dormel::jobs::supervisor {

/// How a process ended.
struct Ending {
  bool known = true;  ///< false for one that was not our child: nobody tells us
  bool bySignal = false;
  int code = 0;  ///< exit status, or the signal's number
  [[nodiscard]] bool successful() const { return known && !bySignal && code == 0; }
};

class JobProcess {
 public:
  /// Starts the job's program in a session of its own. False when the system has no process for it now.
  [[nodiscard]] bool start(const Job& job, const std::vector<std::string>& environment);
  /// Looks after a process that runs already. False when it has ended meanwhile.
  [[nodiscard]] bool adopt(const ProcessRecord& process);

  [[nodiscard]] bool running() const { return handle_.valid(); }
  [[nodiscard]] pid_t id() const { return id_; }
  /// Becomes readable when the process has ended; -1 when none runs.
  [[nodiscard]] int handle() const { return handle_.get(); }
  [[nodiscard]] std::optional<ProcessRecord> record() const;

  /// Takes note of the end; nothing while the process runs.
  [[nodiscard]] std::optional<Ending> reap();
  /// A termination signal, five seconds later the kill; waits for the end.
  void stop();

 private:
  void forget();

  pid_t id_ = 0;
  posix::FileDescriptor handle_;
  bool child_ = false;
};

}  // namespace dormel::jobs::supervisor
