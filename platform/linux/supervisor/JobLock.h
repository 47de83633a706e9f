// The lock file of one job, ~/.local/state/<label>/lock: its supervisor holds it for as long as it lives, and writes
// into it what there is to tell. So whoever finds it free knows that nobody looks after the job, and still finds in it
// the process that a killed supervisor left behind.
//
// The state folder, and not the runtime folder: it needs no variable to be found, so that a login, a terminal and a
// remote shell all find the same one, and no login manager deletes it while the supervisor lives.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

#include "platform/linux/jobs/Scheduler.h"
#include "platform/linux/posix/FileDescriptor.h"

namespace dormel::jobs::supervisor {

class JobLock {
 public:
  explicit JobLock(const std::string& label);

  /// Takes the lock; false when another process has it, or the folder cannot be used. Again after the file was deleted.
  [[nodiscard]] bool claim();
  /// Whether what this process holds is still the file that others find.
  [[nodiscard]] bool isFound() const;
  /// The other process that has it.
  [[nodiscard]] std::optional<pid_t> holder() const;

  /// Of a claimed one.
  void write(const JobReport& report) const;
  [[nodiscard]] JobReport read() const;
  [[nodiscard]] bool exists() const;
  /// Gives a claimed one up and deletes it with its folder.
  void clear();

 private:
  std::string folder_;
  std::string path_;
  posix::FileDescriptor file_;
};

}  // namespace dormel::jobs::supervisor
