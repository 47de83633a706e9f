// What the answers come to: the sleep that is lost in a week, counted up, or praise. Main thread only.
#pragma once

#include "onboarding/OnboardingModel.h"
#include "onboarding/OnboardingScreen.h"

namespace dormel {

class MirrorBeat : public OnboardingScreen {
 public:
  MirrorBeat(const OnboardingModel& model, OnbAction go);

  /// The figure: counts up from 0 to what is lost.
  [[nodiscard]] int shown() const { return shown_; }

 protected:
  void onAppear() override;

 private:
  void praise(const OnboardingModel& model, OnbAction go);
  void warn(const OnboardingModel& model, OnbAction go);
  void show(int hours);
  void countUp(Seconds since);

  int target_;
  int shown_ = 0;
  OnbElement* figure_ = nullptr;  // none in praise
};

}  // namespace dormel
