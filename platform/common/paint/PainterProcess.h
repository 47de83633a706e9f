// A painter as the guard sees it: a process that takes orders and answers. One implementation starts the real helper,
// one plays it on the simulated machine. Main thread only.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>

#include "platform/RunLoop.h"

namespace dormel::paint {

/// Memory that a painter shares with us, readable as long as this lives: whoever made it has seen to it that it can
/// neither shrink nor go away.
class PictureMemory {
 public:
  virtual ~PictureMemory() = default;
  [[nodiscard]] virtual const std::byte* data() const = 0;
  [[nodiscard]] virtual std::size_t size() const = 0;
  /// The same memory for a third process, which may read it; -1 where there is none.
  [[nodiscard]] virtual int descriptor() const { return -1; }
};

/// Ends the process, however it is, when it is destroyed.
class PainterProcess {
 public:
  virtual ~PainterProcess() = default;
  /// Never waits. An order that cannot be sent is lost, and the process is as good as dead.
  virtual void send(std::string_view order) = 0;
};

struct PainterHandlers {
  /// One message; `memory` is null without a descriptor, and where the memory is not as it has to be.
  std::function<void(std::string_view answer, std::shared_ptr<const PictureMemory> memory)> onAnswer;
  Task onEnd;
};

class PainterLauncher {
 public:
  virtual ~PainterLauncher() = default;
  /// Null when none can be started. The handlers are called from the main loop, never inside this call, and not after
  /// the process object is gone; it may be destroyed inside them.
  [[nodiscard]] virtual std::unique_ptr<PainterProcess> start(PainterHandlers handlers) = 0;
};

}  // namespace dormel::paint
