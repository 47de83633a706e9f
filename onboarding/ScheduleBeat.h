// The choice of the lock hour. Main thread only.
#pragma once

#include <memory>

#include "onboarding/OnboardingModel.h"
#include "onboarding/WheelQuestionBeat.h"

namespace dormel {

struct ScheduleBeat : WheelQuestionBeat {
  /// Keeps the hour in the model and, unless it is a preview, in the settings.
  ScheduleBeat(const std::shared_ptr<OnboardingModel>& model, bool preview, OnbAction go);
};

}  // namespace dormel
