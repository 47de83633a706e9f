// The screens that say something and wait for their button. Main thread only.
#pragma once

#include "onboarding/OnboardingModel.h"
#include "onboarding/OnboardingScreen.h"

namespace dormel {

/// The first screen: the mark draws itself, and a greeting.
struct BrandBeat : OnboardingScreen {
  explicit BrandBeat(OnbAction go);
};

/// What the program promises.
struct PromiseBeat : OnboardingScreen {
  explicit PromiseBeat(OnbAction go);
};

/// What the demo has shown.
struct DebriefBeat : OnboardingScreen {
  explicit DebriefBeat(OnbAction go);
};

/// The last screen: what was set up, and good night.
struct FinaleBeat : OnboardingScreen {
  FinaleBeat(const OnboardingModel& model, OnbAction onFinish);
};

}  // namespace dormel
