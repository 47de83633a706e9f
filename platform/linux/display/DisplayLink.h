// A call for each frame of the display, by a timer: nobody tells a client when its screen is scanned out. Main thread
// only.
#pragma once

#include <memory>
#include <utility>

#include "platform/Registration.h"

namespace dormel {

class DisplayLink final : public Registration {
 public:
  static constexpr Seconds FRAME = 0.016;

  /// `loop` outlives it.
  DisplayLink(RunLoop& loop, Task onFrame)
      : timer_(Timer::repeating(
            loop, FRAME, [kept = std::make_shared<Task>(std::move(onFrame))] { (*std::shared_ptr<Task>(kept))(); })) {}

 private:
  Timer timer_;
};

}  // namespace dormel
