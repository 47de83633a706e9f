// A question that one press answers: the picked chip stands out for a moment, then the answer is given. Main thread
// only.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "onboarding/OnbText.h"
#include "onboarding/OnboardingOptions.h"
#include "onboarding/OnboardingScreen.h"

namespace dormel {

class QuestionBeat : public OnboardingScreen {
 public:
  using Option = onboardingOptions::Nights;
  static constexpr double CHIP_WIDTH = 180;
  static constexpr Seconds PICK_DELAY = 0.45;

  QuestionBeat(OnboardingBeat beat, std::string title, std::vector<Option> options, std::function<void(double)> onPick);

  OnbText headline;
  OnbReveal chips;

  [[nodiscard]] const std::vector<Option>& options() const { return options_; }
  [[nodiscard]] bool isSelected(std::size_t option) const;
  /// A chip was pressed, by its place among the options. Only the first press counts.
  void pick(std::size_t option);

 private:
  std::vector<Option> options_;
  std::function<void(double)> onPick_;
  Published<std::optional<double>> picked_{this, std::nullopt};
};

}  // namespace dormel
