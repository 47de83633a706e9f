// Three facts about sleep, and the papers behind them. Main thread only.
#pragma once

#include "onboarding/OnboardingScreen.h"

namespace dormel {

struct ScienceBeat : OnboardingScreen {
  explicit ScienceBeat(OnbAction go);
};

}  // namespace dormel
