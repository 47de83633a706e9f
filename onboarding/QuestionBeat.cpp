#include "onboarding/QuestionBeat.h"

#include <utility>

namespace dormel {

QuestionBeat::QuestionBeat(OnboardingBeat beat, std::string title, std::vector<Option> options,
                           std::function<void(double)> onPick)
    : OnboardingScreen(beat), options_(std::move(options)), onPick_(std::move(onPick)) {
  add(Kind::headline, 0.3, std::move(title));
  chips_ = &add(Kind::choice, 1.2, {}, {.above = 40, .size = 180}, [this](std::size_t option) { pick(option); });
  chips_->parts = onboardingOptions::labelsOf(options_);
}

void QuestionBeat::pick(std::size_t option) {
  if (!chips_->chosen->empty()) return;
  chips_->chosen = {option};
  at(elapsed() + PICK_DELAY, [this, option] { onPick_(options_.at(option).value); });
}

}  // namespace dormel
