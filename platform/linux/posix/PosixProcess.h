// This process through POSIX calls.
#pragma once

#include <time.h>

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/Process.h"
#include "platform/Random.h"
#include "platform/linux/posix/FileDescriptor.h"
#include "platform/linux/posix/InstanceLock.h"

namespace dormel::posix {

class PosixQueues;

/// The files by which the processes of one login session find out about each other.
struct InstanceLockPaths {
  std::string session;  ///< of the scheduled run
  std::string window;   ///< of the opened program
};

/// Ends the program: waits for the serial queues (two seconds at most), runs what was registered with `beforeExit`,
/// and leaves without running destructors, because other threads may still be in the middle of anything.
class PosixProcess final : public Process {
 public:
  /// Hands a descriptor to the main loop, which runs the action whenever it is readable until that returns false.
  using WatchReadable = std::function<void(int fd, std::function<bool()> action)>;

  PosixProcess(PosixQueues& queues, InstanceLockPaths paths, WatchReadable watchReadable);

  /// Adds something to be done at every exit, on whichever thread exits; it must not depend on the main thread. It is
  /// given what will be asked for the status, which may answer otherwise by then.
  void beforeExit(std::function<void(const ExitStatus&)> action) { beforeExit_.push_back(std::move(action)); }

  using Process::exit;
  [[noreturn]] void exit(const ExitStatus& status) override;
  void endWithin(std::optional<Seconds> uptime) override;
  /// What is left of it; nothing without a limit. Any thread.
  [[nodiscard]] std::optional<Seconds> timeLeft();
  [[nodiscard]] int processId() const override;
  [[nodiscard]] unsigned userId() const override;
  void onTerminationSignal(Task handler) override { onSignal(15, std::move(handler)); }
  bool acquireScheduledInstance() override;
  bool acquireWindowInstance(Task onReopen) override { return windowSeat_.claim(watchReadable_, std::move(onReopen)); }

  /// Runs `handler` on the main thread for each `signal` instead of its default effect.
  void onSignal(int signal, Task handler);

 private:
  PosixQueues& queues_;
  std::string sessionLockPath_;
  InstanceLock windowSeat_;
  WatchReadable watchReadable_;
  std::vector<std::function<void(const ExitStatus&)>> beforeExit_;
  std::mutex lastResortMutex_;
  std::optional<timer_t> lastResort_;
  FileDescriptor sessionLock_;
};

class PosixOutput final : public StandardOutput {
 public:
  void print(std::string_view line) override;
  void printError(std::string_view line) override;
  /// Plain where NO_COLOR is set, or TERM names a terminal that can do no more.
  [[nodiscard]] std::optional<Terminal> terminal() const override;
};

class PosixRandom final : public SecureRandom {
 public:
  std::uint64_t next() override;
};

}  // namespace dormel::posix
