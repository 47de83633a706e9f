#include "onboarding/DebriefBeat.h"

#include <utility>

namespace dormel {

DebriefBeat::DebriefBeat(OnbAction go)
    : OnboardingScreen(OnboardingBeat::debrief), button(*this, 3.0, {"Understood"}, std::move(go)) {}

}  // namespace dormel
