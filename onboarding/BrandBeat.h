// The first screen: the mark draws itself, and a greeting. Main thread only.
#pragma once

#include "onboarding/DormelMarkDraw.h"
#include "onboarding/OnbPill.h"
#include "onboarding/OnbText.h"
#include "onboarding/OnboardingScreen.h"
#include "platform/Texts.h"

namespace dormel {

class BrandBeat : public OnboardingScreen {
 public:
  explicit BrandBeat(OnbAction go);

  DormelMarkDraw mark{*this, 0.2};
  OnbText sub{*this, 2.4, translate("Say hello to your good sleep.")};
  OnbPill button;
};

}  // namespace dormel
