// The program's diagnostic trail: while it is switched on, each line goes to a file in the log folder and the newest
// ones stay in memory for display. Apart from standard output, which is the operator's log.
#pragma once

#include <atomic>
#include <deque>
#include <memory>
#include <string>
#include <string_view>

#include "core/Observable.h"
#include "platform/Queues.h"

namespace dormel {

class DebugLog : public Observable, public std::enable_shared_from_this<DebugLog> {
 public:
  static constexpr std::size_t maxLines = 400;

  /// The log of the platform in force, created on first use.
  [[nodiscard]] static DebugLog& shared();

  /// A log of its own, reading its switch from the defaults store. `shared` is what the program uses.
  [[nodiscard]] static std::shared_ptr<DebugLog> create();

  /// Whether `append` records anything. Any thread.
  [[nodiscard]] bool enabled() const { return enabled_; }
  /// Switches and stores the switch under "debugLoggingEnabled". Main thread.
  void setEnabled(bool enabled);

  /// Records `message` under the present time, "HH:mm:ss.SSS". Any thread; returns at once. Every failure to
  /// write loses the line and nothing else.
  void append(std::string_view message);

  /// The newest lines appended in this process while enabled, oldest first. Main thread.
  [[nodiscard]] const std::deque<std::string>& lines() const { return lines_; }

  [[nodiscard]] static std::string filePath();

 private:
  DebugLog();
  void push(std::string line);

  std::atomic<bool> enabled_;
  std::deque<std::string> lines_;
  std::unique_ptr<SerialQueue> fileQueue_;
};

}  // namespace dormel
