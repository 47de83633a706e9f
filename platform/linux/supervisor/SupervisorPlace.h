// Where the supervisor of one job is found: ~/.local/state/<label>/ with a lock file, which it holds for as long
// as it lives, a socket and a record of the job's process.
//
// The state folder, and not the runtime folder: it needs no variable to be found, so that a login, a terminal and
// a remote shell all find the same one, and no login manager deletes it while the supervisor lives.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>

#include "platform/linux/posix/FileDescriptor.h"

namespace dormel::jobs::supervisor {

/// A process of the job that may outlive its supervisor.
struct ProcessRecord {
  pid_t process = 0;
  std::uint64_t startTicks = 0;  ///< with the id, it names one process and no later one
};

class SupervisorPlace {
 public:
  explicit SupervisorPlace(const std::string& label);

  [[nodiscard]] const std::string& folder() const { return folder_; }

  /// Takes the lock and opens the socket; false when another supervisor has them or the folder cannot be used.
  /// Called again after the folder was deleted, it makes a new one.
  [[nodiscard]] bool claim();
  /// The listening socket of a claimed place.
  [[nodiscard]] int listener() const { return listener_.get(); }
  /// Gives a claimed place up and deletes it. Does nothing the second time.
  void clear();

  /// A connection to the supervisor that has this place; not valid when there is none.
  [[nodiscard]] posix::FileDescriptor connect() const;

  /// The job's process of last time, if it still runs.
  [[nodiscard]] std::optional<ProcessRecord> livingProcess() const;
  void record(std::optional<ProcessRecord> process) const;

 private:
  [[nodiscard]] bool lock();
  void close();

  std::string folder_;
  posix::FileDescriptor lock_;
  posix::FileDescriptor listener_;
};

}  // namespace dormel::jobs::supervisor
