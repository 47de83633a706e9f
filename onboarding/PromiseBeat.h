// What the program promises. Main thread only.
#pragma once

#include "onboarding/OnbPill.h"
#include "onboarding/OnbText.h"
#include "onboarding/OnboardingScreen.h"
#include "platform/Platform.h"
#include "platform/Wording.h"

namespace dormel {

class PromiseBeat : public OnboardingScreen {
 public:
  explicit PromiseBeat(OnbAction go);

  OnbText headline{*this, 0.3, "Your " + platform().wording.computer() + " locks at your bedtime."};
  OnbText sub{*this, 1.5, "No willpower needed."};
  OnbPill button;
};

}  // namespace dormel
