#include "onboarding/KeepsBeat.h"

#include <utility>

#include "platform/Texts.h"

namespace dormel {

KeepsBeat::KeepsBeat(std::function<void(const std::vector<std::string>&)> onContinue)
    : OnboardingScreen(OnboardingBeat::q4Keeps), options_(onboardingOptions::keeps()) {
  add(Kind::headline, 0.3, translate("What keeps you up?"));
  add(Kind::sub, 1.0, translate("Pick all that apply."), {.above = 16});
  chips_ = &add(Kind::chips, 1.5, {}, {.above = 40, .size = 200}, [this](std::size_t chip) { toggle(chip); });
  chips_->parts = onboardingOptions::labelsOf(options_);
  button_ = &addButton(2.2, translate("Continue"), {.above = 48},
                       [this, onContinue = std::move(onContinue)] { onContinue(picks()); });
  button_->enabled = false;
}

std::vector<std::string> KeepsBeat::picks() const {
  std::vector<std::string> values;
  for (const std::size_t chip : *chips_->chosen) values.push_back(options_.at(chip).value);
  return values;
}

void KeepsBeat::toggle(std::size_t chip) {
  std::vector<std::size_t> picked = *chips_->chosen;
  if (std::erase(picked, chip) == 0) picked.push_back(chip);
  chips_->chosen = std::move(picked);
  button_->enabled = !chips_->chosen->empty();
}

}  // namespace dormel
