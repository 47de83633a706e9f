// A question that a wheel answers. There is always an answer, so its button is always enabled. Main thread only.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "onboarding/OnbPill.h"
#include "onboarding/OnbText.h"
#include "onboarding/OnbWheel.h"
#include "onboarding/OnboardingScreen.h"

namespace dormel {

class WheelQuestionBeat : public OnboardingScreen {
 public:
  /// `onContinue` gets the wheel's value.
  WheelQuestionBeat(OnboardingBeat beat, std::string title, std::vector<OnbWheel::Option> options, int initial,
                    std::function<void(int)> onContinue);

  OnbText headline;
  OnbWheel wheel;
  OnbPill button;
};

}  // namespace dormel
