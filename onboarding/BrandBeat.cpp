#include "onboarding/BrandBeat.h"

#include <utility>

#include "platform/Texts.h"

namespace dormel {

BrandBeat::BrandBeat(OnbAction go)
    : OnboardingScreen(OnboardingBeat::brand), button(*this, 4.2, {translate("Begin")}, std::move(go)) {}

}  // namespace dormel
