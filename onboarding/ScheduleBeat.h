// The choice of the lock hour. Main thread only.
#pragma once

#include <memory>

#include "onboarding/OnbPill.h"
#include "onboarding/OnbText.h"
#include "onboarding/OnbWheel.h"
#include "onboarding/OnboardingModel.h"
#include "onboarding/OnboardingScreen.h"
#include "platform/Platform.h"
#include "platform/Texts.h"
#include "platform/Wording.h"

namespace dormel {

class ScheduleBeat : public OnboardingScreen {
 public:
  /// Keeps the hour in the model and, unless it is a preview, in the settings.
  ScheduleBeat(std::shared_ptr<OnboardingModel> model, bool preview, OnbAction go);

  OnbText headline{*this, 0.3, translate("When should your %1 lock?", {platform().wording.computer()})};
  OnbWheel wheel;
  OnbPill button;
  OnbText whisper{*this, 2.8, translate("You can change this anytime.")};

 private:
  void commit();

  std::shared_ptr<OnboardingModel> model_;
  bool preview_;
  OnbAction go_;
};

}  // namespace dormel
