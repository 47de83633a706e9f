#include "onboarding/PromiseBeat.h"

#include <utility>

#include "platform/Texts.h"

namespace dormel {

PromiseBeat::PromiseBeat(OnbAction go)
    : OnboardingScreen(OnboardingBeat::promise), button(*this, 3.0, {translate("Continue")}, std::move(go)) {}

}  // namespace dormel
