// Serial queues on threads of their own, and background timers that need theirs only while the main loop is stuck. A
// queue's thread starts with its first task; all of them sleep in the kernel until there is work.
#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/Queues.h"

namespace dormel::posix {

class PosixQueues final : public Queues {
 public:
  /// `loop` outlives this object and its timers.
  explicit PosixQueues(RunLoop& loop);
  ~PosixQueues() override;

  [[nodiscard]] std::unique_ptr<SerialQueue> makeSerial(std::string_view label) override;
  [[nodiscard]] std::unique_ptr<BackgroundTimer> makeBackgroundTimer(Seconds first, Seconds interval,
                                                                     Task tick) override;

  /// Waits until every serial queue has run dry, `limit` seconds at most; false when that was not enough.
  /// Any thread but a serial queue's.
  bool drain(Seconds limit);

 private:
  class Serial;
  struct Registry;
  RunLoop& loop_;
  std::shared_ptr<Registry> registry_;
};

/// Does the work on a thread of its own, and waits for it, so long at most: somebody who does not answer must not keep
/// the process from ending. Where no thread is left on this machine, nothing is done.
void doWithin(std::chrono::milliseconds limit, Task work);

}  // namespace dormel::posix
