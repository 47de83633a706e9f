// What keeps the user up: as many chips as apply. Main thread only.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "onboarding/OnboardingOptions.h"
#include "onboarding/OnboardingScreen.h"

namespace dormel {

class KeepsBeat : public OnboardingScreen {
 public:
  /// `onContinue` gets the picks.
  explicit KeepsBeat(std::function<void(const std::vector<std::string>&)> onContinue);

  /// The options' values, in the order they were picked.
  [[nodiscard]] std::vector<std::string> picks() const;

 private:
  /// Picks a chip, or takes its pick back.
  void toggle(std::size_t chip);

  std::vector<onboardingOptions::Keep> options_;
  OnbElement* chips_ = nullptr;
  OnbElement* button_ = nullptr;
};

}  // namespace dormel
