#include "onboarding/DemoBeat.h"

#include <utility>

#include "core/Constants.h"
#include "platform/Texts.h"

namespace dormel {

DemoBeat::DemoBeat(Actions actions) : OnboardingScreen(OnboardingBeat::demo), actions_(std::move(actions)) {
  add(Kind::headline, 0.3, translate("Ready to try?"));
  add(Kind::sub, 1.4,
      translate("Your screen will lock.\nTo snooze, hold the keys for %1 seconds.",
                {std::to_string(static_cast<int>(TEST_HOLD_DURATION))}),
      {.above = 16});
  addButton(2.6, translate("Test Dormel"), {.above = 48}, [this] { start(); });
}

void DemoBeat::start() {
  if (started_) return;
  if (!actions_.runDemo || !actions_.runDemo([] {})) {
    actions_.backToPermission();
    return;
  }
  started_ = true;
  // The next screen is in place under the lock when the demo ends.
  at(elapsed() + DEBRIEF_DELAY, [this] { actions_.goDebrief(); });
}

}  // namespace dormel
