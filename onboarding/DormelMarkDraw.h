// The mark that draws itself: its stroke grows from nothing to all of it. Main thread only.
#pragma once

#include "onboarding/OnbReveal.h"

namespace dormel {

class DormelMarkDraw {
 public:
  static constexpr double SIDE = 118;  ///< points

  DormelMarkDraw(OnboardingScreen& screen, Seconds delay) : screen_(screen), reveal_(screen, delay) {}

  /// How much of the stroke is drawn at this moment, 0 to 1: to be read on every display frame until it is 1.
  [[nodiscard]] double trim() const;
  [[nodiscard]] const OnbReveal& reveal() const { return reveal_; }

 private:
  const OnboardingScreen& screen_;
  OnbReveal reveal_;
};

}  // namespace dormel
