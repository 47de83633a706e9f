#include "onboarding/PromiseBeat.h"

#include <utility>

namespace dormel {

PromiseBeat::PromiseBeat(OnbAction go)
    : OnboardingScreen(OnboardingBeat::promise), button(*this, 3.0, {"Continue"}, std::move(go)) {}

}  // namespace dormel
