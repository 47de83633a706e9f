// The last screen: what was set up, and good night. Main thread only.
#pragma once

#include <memory>
#include <vector>

#include "onboarding/OnbPill.h"
#include "onboarding/OnbText.h"
#include "onboarding/OnboardingModel.h"
#include "onboarding/OnboardingScreen.h"
#include "platform/Texts.h"

namespace dormel {

class FinaleBeat : public OnboardingScreen {
 public:
  FinaleBeat(const OnboardingModel& model, OnbAction onFinish);

  OnbText headline{*this, 0.3, translate("Setting up your dormel…")};
  OnbText locksAt;                                                          ///< a row of the pieces below
  OnbText everyNight{*this, 2.7, translate("Every night, automatically")};  ///< 16 points, half opacity
  OnbText goneByMorning{*this, 3.9, translate("Gone by morning")};          ///< 16 points, half opacity
  OnbPill button;

  /// "Locks at " at half opacity, the hour semibold.
  [[nodiscard]] const std::vector<OnbSpan>& locksAtSpans() const { return locksAtSpans_; }

 private:
  std::vector<OnbSpan> locksAtSpans_;
};

}  // namespace dormel
