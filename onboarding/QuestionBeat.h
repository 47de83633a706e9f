// A question that one press answers: the picked chip stands out for a moment, then the answer is given. Main thread
// only.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "onboarding/OnboardingOptions.h"
#include "onboarding/OnboardingScreen.h"

namespace dormel {

class QuestionBeat : public OnboardingScreen {
 public:
  using Option = onboardingOptions::Nights;
  static constexpr Seconds PICK_DELAY = 0.45;

  QuestionBeat(OnboardingBeat beat, std::string title, std::vector<Option> options, std::function<void(double)> onPick);

 private:
  /// Only the first pick counts.
  void pick(std::size_t option);

  std::vector<Option> options_;
  std::function<void(double)> onPick_;
  OnbElement* chips_ = nullptr;
};

}  // namespace dormel
