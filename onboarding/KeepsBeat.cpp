#include "onboarding/KeepsBeat.h"

#include <algorithm>
#include <utility>

#include "onboarding/OnboardingOptions.h"
#include "platform/Texts.h"

namespace dormel {
KeepsBeat::KeepsBeat(std::function<void(const std::vector<std::string>&)> onContinue)
    : OnboardingScreen(OnboardingBeat::q4Keeps),
      button(*this, 2.2, {.title = translate("Continue"), .enabled = false},
             [this, onContinue = std::move(onContinue)] { onContinue(picks()); }),
      options_(onboardingOptions::keeps()) {}

bool KeepsBeat::isSelected(std::size_t chip) const {
  return chip < options_.size() && std::find(picks_->begin(), picks_->end(), options_[chip].value) != picks_->end();
}

void KeepsBeat::toggle(std::size_t chip) {
  if (!isShown() || !chips.on() || chip >= options_.size()) return;
  std::vector<std::string> picks = *picks_;
  const std::string& value = options_[chip].value;
  if (std::erase(picks, value) == 0) picks.push_back(value);
  picks_ = std::move(picks);
  button.setEnabled(!picks_->empty());
}

}  // namespace dormel
