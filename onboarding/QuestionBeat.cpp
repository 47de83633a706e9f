#include "onboarding/QuestionBeat.h"

#include <utility>

namespace dormel {

QuestionBeat::QuestionBeat(OnboardingBeat beat, std::string title, std::vector<Option> options,
                           std::function<void(double)> onPick)
    : OnboardingScreen(beat),
      headline(*this, 0.3, std::move(title)),
      chips(*this, 1.2),
      options_(std::move(options)),
      onPick_(std::move(onPick)) {}

bool QuestionBeat::isSelected(std::size_t option) const {
  return option < options_.size() && *picked_ == options_[option].value;
}

void QuestionBeat::pick(std::size_t option) {
  if (!isShown() || !chips.on() || *picked_ || option >= options_.size()) return;
  picked_ = options_[option].value;
  at(elapsed() + PICK_DELAY, [this] { onPick_(**picked_); });
}

}  // namespace dormel
