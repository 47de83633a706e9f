#include "platform/linux/display/AlphaAnimator.h"

#include <algorithm>
#include <utility>

#include "platform/linux/display/TimingCurves.h"

namespace dormel {

AlphaAnimator::AlphaAnimator(RunLoop& loop, const Clock& clock, std::function<int()> frameMilliseconds)
    : clock_(clock), frameMilliseconds_(std::move(frameMilliseconds)), loop_(loop) {}

void AlphaAnimator::animate(const std::vector<std::shared_ptr<Window>>& windows, double alpha, Seconds duration,
                            TimingCurve curve, Task completion) {
  Animation animation{{}, alpha, std::max(duration, 0.0), curve, std::move(completion), {}};
  for (const auto& window : windows) {
    const auto fading = std::dynamic_pointer_cast<FadingWindow>(window);
    if (fading) animation.windows.push_back({fading, fading->beginFade(), fading->alpha()});
  }
  animations_.push_back(std::move(animation));
  timer_ = Timer::repeating(loop_, frameMilliseconds_() / 1000.0, [this] { frame(); });
}

void AlphaAnimator::frame() {
  const Seconds now = clock_.uptime();
  std::vector<Task> completions;
  for (Animation& animation : animations_) {
    if (!animation.start) animation.start = now;
    const Seconds elapsed = now - *animation.start;
    const bool isOver = elapsed >= animation.duration;
    const double progress = isOver ? 1 : eased(animation.curve, elapsed / animation.duration);
    for (const Faded& faded : animation.windows) {
      const auto window = faded.window.lock();
      if (!window || window->currentFade() != faded.fade) continue;
      window->setFadedAlpha(isOver ? animation.to : faded.from + (animation.to - faded.from) * progress);
    }
    if (isOver) completions.push_back(std::move(animation.completion));
  }
  std::erase_if(animations_, [&](const Animation& a) { return now - *a.start >= a.duration; });
  if (animations_.empty()) timer_.invalidate();
  for (const Task& completion : completions) {
    if (completion) completion();
  }
}

}  // namespace dormel
