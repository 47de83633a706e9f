#include "onboarding/WheelQuestionBeat.h"

#include <utility>

#include "onboarding/OnbSpan.h"
#include "onboarding/OnboardingOptions.h"

namespace dormel {

WheelQuestionBeat::WheelQuestionBeat(OnboardingBeat beat, const std::string& title,
                                     std::vector<OnbWheel::Option> options, int initial, const std::string& done,
                                     std::function<void(int)> onContinue)
    : OnboardingScreen(beat) {
  add(Kind::headline, 0.3, title);
  OnbElement& rows = add(Kind::wheel, 1.2, plainText(headlineSpans(title)), {.above = 24},
                         [this](std::size_t row) { wheel_->select(row); });
  rows.parts = onboardingOptions::labelsOf(options);
  wheel_ = std::make_unique<OnbWheel>(*this, rows, std::move(options), initial);
  addButton(2.0, done, {.above = 24}, [this, onContinue = std::move(onContinue)] { onContinue(wheel_->selection()); });
}

}  // namespace dormel
