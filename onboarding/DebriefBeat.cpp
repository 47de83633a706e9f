#include "onboarding/DebriefBeat.h"

#include <utility>

#include "platform/Texts.h"

namespace dormel {

DebriefBeat::DebriefBeat(OnbAction go)
    : OnboardingScreen(OnboardingBeat::debrief), button(*this, 3.0, {translate("Understood")}, std::move(go)) {}

}  // namespace dormel
