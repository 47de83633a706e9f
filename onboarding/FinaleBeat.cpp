#include "onboarding/FinaleBeat.h"

#include <utility>

namespace dormel {

FinaleBeat::FinaleBeat(const OnboardingModel& model, OnbAction onFinish)
    : OnboardingScreen(OnboardingBeat::finale),
      locksAt(*this, 1.5, "Locks at " + spokenHour(model.lockNight)),
      button(*this, 5.4, {"Sleep Well"}, std::move(onFinish)),
      locksAtSpans_{{"Locks at "}, {spokenHour(model.lockNight), true}} {}

}  // namespace dormel
