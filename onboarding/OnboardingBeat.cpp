#include "onboarding/OnboardingBeat.h"

#include "onboarding/OnboardingModel.h"
#include "platform/Defaults.h"
#include "platform/Platform.h"

namespace dormel {

std::optional<OnboardingBeat> onboardingBeat(std::int64_t rawValue) {
  if (rawValue < 0 || rawValue >= static_cast<std::int64_t>(ONBOARDING_BEATS.size())) return {};
  return ONBOARDING_BEATS.at(static_cast<std::size_t>(rawValue));
}

std::optional<OnboardingBeat> backTarget(OnboardingBeat beat) {
  switch (beat) {
    case OnboardingBeat::q2Nights:
      return OnboardingBeat::q1Latest;
    case OnboardingBeat::q3Want:
      return OnboardingBeat::q2Nights;
    case OnboardingBeat::q4Keeps:
      return OnboardingBeat::q3Want;
    case OnboardingBeat::mirror:
      return OnboardingBeat::q4Keeps;
    default:
      return {};
  }
}

OnboardingBeat resumePoint() {
  const std::int64_t stored = platform().defaults.integer(defaultsKey::onboardingBeat).value_or(0);
  const OnboardingBeat reached = onboardingBeat(stored).value_or(OnboardingBeat::brand);
  for (const OnboardingBeat point : {OnboardingBeat::schedule, OnboardingBeat::accessibility}) {
    if (reached >= point) return point;
  }
  return OnboardingBeat::brand;
}

}  // namespace dormel
