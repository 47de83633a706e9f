#include "onboarding/BrandBeat.h"

#include <utility>

namespace dormel {

BrandBeat::BrandBeat(OnbAction go)
    : OnboardingScreen(OnboardingBeat::brand), button(*this, 4.2, {"Begin"}, std::move(go)) {}

}  // namespace dormel
