// Alpha animations of windows, frame by frame. No timer runs while nothing is animated. Main thread only.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/Windows.h"

namespace dormel {

/// A window whose alpha can be animated.
class FadingWindow : public Window {
 public:
  /// As `setAlpha`, but as a step of the animation that `beginFade` announced.
  virtual void setFadedAlpha(double alpha) = 0;

  /// Ends whatever animation runs on this window and names the next one.
  [[nodiscard]] std::uint64_t beginFade() { return ++fade_; }
  [[nodiscard]] std::uint64_t currentFade() const { return fade_; }

 private:
  std::uint64_t fade_ = 0;
};

class AlphaAnimator {
 public:
  /// `frameMilliseconds` is asked at every start of an animation. `loop` and `clock` outlive it.
  AlphaAnimator(RunLoop& loop, const Clock& clock, std::function<int()> frameMilliseconds);

  /// Of those windows whose alpha can be animated.
  /// The clock of an animation starts with its first frame, so that a busy start shows as a delay, not as a jump.
  /// The completion runs from the run loop, once, also when no window is left.
  void animate(const std::vector<std::shared_ptr<Window>>& windows, double alpha, Seconds duration, TimingCurve curve,
               Task completion);

 private:
  struct Faded {
    std::weak_ptr<FadingWindow> window;
    std::uint64_t fade;
    double from;
  };
  struct Animation {
    std::vector<Faded> windows;
    double to;
    Seconds duration;
    TimingCurve curve;
    Task completion;
    std::optional<Seconds> start;
  };
  void frame();

  const Clock& clock_;
  std::function<int()> frameMilliseconds_;
  std::vector<Animation> animations_;
  RunLoop& loop_;
  Timer timer_;
};

}  // namespace dormel
