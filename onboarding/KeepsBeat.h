// What keeps the user up: as many chips as apply. Main thread only.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "onboarding/OnbPill.h"
#include "onboarding/OnbText.h"
#include "onboarding/OnboardingOptions.h"
#include "onboarding/OnboardingScreen.h"
#include "platform/Texts.h"

namespace dormel {

class KeepsBeat : public OnboardingScreen {
 public:
  static constexpr double CHIP_WIDTH = 200;

  /// `onContinue` gets the picks.
  explicit KeepsBeat(std::function<void(const std::vector<std::string>&)> onContinue);

  OnbText headline{*this, 0.3, translate("What keeps you up?")};
  OnbText sub{*this, 1.0, translate("Pick all that apply.")};
  OnbReveal chips{*this, 1.5};
  OnbPill button;

  [[nodiscard]] const std::vector<onboardingOptions::Keep>& options() const { return options_; }
  [[nodiscard]] bool isSelected(std::size_t chip) const;
  /// A chip was pressed: picks it, or takes its pick back.
  void toggle(std::size_t chip);
  /// The options' values, in the order they were picked.
  [[nodiscard]] const std::vector<std::string>& picks() const { return *picks_; }

 private:
  std::vector<onboardingOptions::Keep> options_;
  Published<std::vector<std::string>> picks_{this, {}};
};

}  // namespace dormel
