// This process, its children and its standard streams.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/RunLoop.h"
#include "platform/Time.h"

namespace dormel {

class Process {
 public:
  virtual ~Process() = default;

  using ExitStatus = std::function<int()>;

  /// Ends the process after the serial queues have run dry (two seconds at most), with what `status` answers at the
  /// very end, on the calling thread. Any thread: a stuck main thread does not stop it.
  [[noreturn]] virtual void exit(const ExitStatus& status) = 0;
  [[noreturn]] void exit(int status);

  /// Has the kernel kill this process once `uptime` has passed, whatever it is stuck in by then, a dead disk or a stop
  /// signal included. Sleep does not count. Each call replaces the one before; without a value there is no limit any
  /// more. Any thread. Where the kernel has no timer left, nothing happens.
  virtual void endWithin(std::optional<Seconds> uptime) = 0;

  /// This process's id.
  [[nodiscard]] virtual int processId() const = 0;

  /// The user's numeric id.
  [[nodiscard]] virtual unsigned userId() const = 0;

  /// From now on a termination signal no longer kills the process; instead `handler` runs on the main thread,
  /// between other main-thread work.
  virtual void onTerminationSignal(Task handler) = 0;

  /// Takes the lock that lets one scheduled run in at a time in this user's login session. True when this process has
  /// it now, and until it ends; false when another process has it.
  virtual bool acquireScheduledInstance() = 0;

  /// Takes the lock that lets one opened program in at a time in this user's login session. False when another has it,
  /// which has then been told; `onReopen` runs in this process, on the main thread, whenever it is told.
  virtual bool acquireWindowInstance(Task onReopen) = 0;
};

class ChildProcesses {
 public:
  virtual ~ChildProcesses() = default;

  /// Runs `tool` with `arguments` to its end, its output dropped, and returns its exit status (128 + n after
  /// signal n); -1 when it could not be started. Blocks the caller. `tool` is looked up as `toolPath` does.
  virtual std::int32_t run(const std::string& tool, const std::vector<std::string>& arguments) = 0;

  /// The file that stands for `tool` on this platform, for callers that name it in a shell's text: "/usr/bin/open" and
  /// "/bin/launchctl" are programs of the bundle. A tool that needs no standing in is answered as it is.
  [[nodiscard]] virtual std::string toolPath(const std::string& tool) const { return tool; }

  /// Starts `tool` and lets it run, in a session of its own, its output dropped; it outlives this process. False when
  /// it could not be started.
  virtual bool start(const std::string& tool, const std::vector<std::string>& arguments) = 0;
};

/// What standard output is shown on.
struct Terminal {
  int columns = 80;
  bool highlights = true;  ///< text may be bold or dim
};

/// The operator's log. Each call writes one whole line at once. Any thread. A closed stream loses the line only.
class StandardOutput {
 public:
  virtual ~StandardOutput() = default;
  virtual void print(std::string_view line) = 0;
  virtual void printError(std::string_view line) = 0;
  /// Nothing where standard output goes to a file or to another program.
  [[nodiscard]] virtual std::optional<Terminal> terminal() const { return {}; }
};

}  // namespace dormel
