// What the answers come to: the sleep that is lost in a week, counted up, or praise. Main thread only.
#pragma once

#include <string>

#include "onboarding/OnbPill.h"
#include "onboarding/OnbText.h"
#include "onboarding/OnboardingModel.h"
#include "onboarding/OnboardingScreen.h"
#include "platform/Texts.h"

namespace dormel {

class MirrorBeat : public OnboardingScreen {
 public:
  MirrorBeat(const OnboardingModel& model, OnbAction go);

  /// Praise; otherwise the sleep that is lost. Decided when the screen is built. One variant's elements are not to be
  /// drawn while the other is shown.
  [[nodiscard]] bool isAhead() const { return isAhead_; }

  // Both variants, with texts and delays of their own.
  OnbText headline;  ///< losing: "You're losing", bold at 30 points
  OnbPill button;

  // Losing.
  OnbReveal figure{*this, 1.4};                                  ///< `shown`, bold at 124 points, letters 3 closer
  OnbText unit{*this, 1.4, translate("hours of sleep a week")};  ///< bold at 30 points
  OnbText mirrorLine;
  /// Counts up from 0 to what is lost.
  [[nodiscard]] int shown() const { return shown_; }
  /// What it counts up to: the width to keep free.
  [[nodiscard]] int target() const { return target_; }

  // Ahead.
  OnbText habit;
  OnbText promise;

 protected:
  void onAppear() override;

 private:
  void countUp(Seconds since);

  bool isAhead_;
  int target_;
  Published<int> shown_{this, 0};
};

}  // namespace dormel
