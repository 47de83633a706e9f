// What the demo has shown. Main thread only.
#pragma once

#include "onboarding/OnbPill.h"
#include "onboarding/OnbText.h"
#include "onboarding/OnboardingScreen.h"
#include "platform/Platform.h"
#include "platform/Texts.h"
#include "platform/Wording.h"

namespace dormel {

class DebriefBeat : public OnboardingScreen {
 public:
  explicit DebriefBeat(OnbAction go);

  OnbText headline{*this, 0.3, translate("Well done!")};
  OnbText sub{*this, 1.6,
              translate("Dormel locks your %1 at your selected time, every night.", {platform().wording.computer()})};
  OnbPill button;
};

}  // namespace dormel
