// Another program, run for what it writes to its standard output. Main thread.
#pragma once

#include <sys/types.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/posix/FileDescriptor.h"

namespace dormel::posix {

/// Killed, if it still runs, and reaped when this goes. Its standard input is empty, its standard error is ours.
class PipedProcess {
 public:
  /// Null when it cannot be started.
  [[nodiscard]] static std::unique_ptr<PipedProcess> start(const std::string& path,
                                                           const std::vector<std::string>& arguments);
  PipedProcess(const PipedProcess&) = delete;
  PipedProcess& operator=(const PipedProcess&) = delete;
  ~PipedProcess();

  /// Readable when there is something to read, and when the program has ended.
  [[nodiscard]] int descriptor() const { return output_.get(); }
  /// Takes in what there is, without waiting; false once nothing more will come.
  [[nodiscard]] bool read();
  /// The next whole line that was read, without its end; a longer one than any of ours comes in pieces.
  [[nodiscard]] std::optional<std::string> nextLine();

 private:
  PipedProcess(pid_t child, FileDescriptor output) : child_(child), output_(std::move(output)) {}

  pid_t child_;
  FileDescriptor output_;
  std::string heard_;
};

}  // namespace dormel::posix
