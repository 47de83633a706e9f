// This process and its children through POSIX calls.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/Process.h"
#include "platform/Random.h"
#include "platform/linux/posix/FileDescriptor.h"

namespace dormel::posix {

class PosixQueues;

/// Ends the program: waits for the serial queues (two seconds at most), runs what was registered with `beforeExit`,
/// and leaves without running destructors, because other threads may still be in the middle of anything.
class PosixProcess final : public Process {
 public:
  /// Hands a descriptor to the main loop, which runs the action whenever it is readable until that returns false.
  using WatchReadable = std::function<void(int fd, std::function<bool()> action)>;

  PosixProcess(PosixQueues& queues, std::string sessionLockPath, WatchReadable watchReadable);

  /// Adds something to be done at every exit, on whichever thread exits; it must not depend on the main thread.
  void beforeExit(Task action) { beforeExit_.push_back(std::move(action)); }

  [[noreturn]] void exit(int status) override;
  [[nodiscard]] unsigned userId() const override;
  void onTerminationSignal(Task handler) override { onSignal(15, std::move(handler)); }
  bool claimSession() override;

  /// Runs `handler` on the main thread for each `signal` instead of its default effect.
  void onSignal(int signal, Task handler);

 private:
  PosixQueues& queues_;
  std::string sessionLockPath_;
  WatchReadable watchReadable_;
  std::vector<Task> beforeExit_;
  FileDescriptor sessionLock_;
};

class PosixChildProcesses final : public ChildProcesses {
 public:
  /// `launchctl` is where this bundle keeps the scheduler tool.
  explicit PosixChildProcesses(std::string launchctl) : launchctl_(std::move(launchctl)) {}
  std::int32_t run(const std::string& tool, const std::vector<std::string>& arguments) override;

 private:
  std::string launchctl_;
};

class PosixOutput final : public StandardOutput {
 public:
  void print(std::string_view line) override;
  void printError(std::string_view line) override;
};

class PosixRandom final : public SecureRandom {
 public:
  std::uint64_t next() override;
};

}  // namespace dormel::posix
