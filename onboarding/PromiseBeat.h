// What the program promises. Main thread only.
#pragma once

#include "onboarding/OnbPill.h"
#include "onboarding/OnbText.h"
#include "onboarding/OnboardingScreen.h"
#include "platform/Platform.h"
#include "platform/Texts.h"
#include "platform/Wording.h"

namespace dormel {

class PromiseBeat : public OnboardingScreen {
 public:
  explicit PromiseBeat(OnbAction go);

  OnbText headline{*this, 0.3, translate("Your %1 locks at your bedtime.", {platform().wording.computer()})};
  OnbText sub{*this, 1.5, translate("No willpower needed.")};
  OnbPill button;
};

}  // namespace dormel
