#include "onboarding/WheelQuestionBeat.h"

#include <utility>

#include "platform/Texts.h"

namespace dormel {

WheelQuestionBeat::WheelQuestionBeat(OnboardingBeat beat, std::string title, std::vector<OnbWheel::Option> options,
                                     int initial, std::function<void(int)> onContinue)
    : OnboardingScreen(beat),
      headline(*this, 0.3, std::move(title)),
      wheel(*this, 1.2, std::move(options), initial),
      button(*this, 2.0, {translate("Continue")},
             [this, onContinue = std::move(onContinue)] { onContinue(wheel.selection()); }) {}

}  // namespace dormel
