// Starts the bundle's painter and talks to it: a socket of datagrams, pictures in memory that the painter shares and
// cannot take away. No toolkit. Main thread only.
//
// The painter gets one descriptor, a small environment without a display or a bus, limits, and no way to gain
// privileges; it dies with the thread that started it. What else it denies itself stands in Confinement.h.
#pragma once

#include <sys/types.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/common/paint/PainterProcess.h"
#include "platform/linux/loop/EventLoop.h"

namespace dormel::paint {

class PainterProcessLauncher final : public PainterLauncher {
 public:
  /// `loop` outlives it and every process.
  PainterProcessLauncher(std::string program, EventLoop& loop);
  PainterProcessLauncher(const PainterProcessLauncher&) = delete;
  PainterProcessLauncher& operator=(const PainterProcessLauncher&) = delete;
  ~PainterProcessLauncher() override;

  [[nodiscard]] std::unique_ptr<PainterProcess> start(PainterHandlers handlers) override;

 private:
  class Child;
  struct Unreaped;

  std::string program_;
  EventLoop& loop_;
  std::shared_ptr<Unreaped> unreaped_;
};

/// The memory behind `fd`, which this takes over, mapped for reading. Null unless it is sealed against shrinking and
/// growing.
[[nodiscard]] std::shared_ptr<const PictureMemory> mapSealed(int fd);

}  // namespace dormel::paint
