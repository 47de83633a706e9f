#include "onboarding/OnbPill.h"

#include <utility>

#include "onboarding/OnboardingScreen.h"

namespace dormel {

OnbPill::OnbPill(OnboardingScreen& screen, Seconds delay, Style style, std::function<void()> action)
    : screen_(screen),
      title_(std::move(style.title)),
      quiet_(style.quiet),
      enabled_(&screen, style.enabled),
      reveal_(screen, delay, style.released),
      action_(std::move(action)) {}

bool OnbPill::canPress() const { return enabled_ && reveal_.on() && screen_.isShown(); }

void OnbPill::press() const {
  if (!canPress()) return;
  const std::function<void()> action = action_;  // which may take this button away
  if (action) action();
}

}  // namespace dormel
