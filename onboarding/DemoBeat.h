// The lock, once, for a try. Main thread only.
#pragma once

#include <functional>

#include "onboarding/OnbPill.h"
#include "onboarding/OnbText.h"
#include "onboarding/OnboardingScreen.h"
#include "platform/Texts.h"

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

  OnbText headline{*this, 0.3, translate("Ready to try?")};
  OnbText sub;  ///< two lines
  OnbPill button;

  [[nodiscard]] bool started() const { return started_; }

 private:
  void start();

  Actions actions_;
  Published<bool> started_{this, false};
};

}  // namespace dormel
