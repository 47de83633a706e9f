#include "onboarding/KeepsBeat.h"

#include <algorithm>
#include <utility>

#include "onboarding/OnboardingOptions.h"

namespace dormel {
namespace {

/// The labels are ASCII.
std::string lowerCased(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

}  // namespace

KeepsBeat::KeepsBeat(std::function<void(const std::vector<std::string>&)> onContinue)
    : OnboardingScreen(OnboardingBeat::q4Keeps),
      button(*this, 2.2, {.title = "Continue", .enabled = false},
             [this, onContinue = std::move(onContinue)] { onContinue(picks()); }),
      labels_(onboardingOptions::keeps()) {}

bool KeepsBeat::isSelected(std::size_t chip) const {
  return chip < labels_.size() && std::find(picks_->begin(), picks_->end(), lowerCased(labels_[chip])) != picks_->end();
}

void KeepsBeat::toggle(std::size_t chip) {
  if (!isShown() || !chips.on() || chip >= labels_.size()) return;
  std::vector<std::string> picks = *picks_;
  const std::string label = lowerCased(labels_[chip]);
  if (std::erase(picks, label) == 0) picks.push_back(label);
  picks_ = std::move(picks);
  button.setEnabled(!picks_->empty());
}

}  // namespace dormel
