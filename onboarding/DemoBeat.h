// The lock, once, for a try. Main thread only.
#pragma once

#include <functional>

#include "onboarding/OnboardingScreen.h"

namespace dormel {

class DemoBeat : public OnboardingScreen {
 public:
  static constexpr Seconds DEBRIEF_DELAY = 1.2;

  struct Actions {
    /// Starts the demo; false when it cannot start.
    std::function<bool(std::function<void()> onEnd)> runDemo;
    OnbAction goDebrief;
    OnbAction backToPermission;
  };
  explicit DemoBeat(Actions actions);

  [[nodiscard]] bool started() const { return started_; }

 private:
  void start();

  Actions actions_;
  bool started_ = false;
};

}  // namespace dormel
