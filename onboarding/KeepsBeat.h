// What keeps the user up: as many chips as apply. Main thread only.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "onboarding/OnbPill.h"
#include "onboarding/OnbText.h"
#include "onboarding/OnboardingScreen.h"

namespace dormel {

class KeepsBeat : public OnboardingScreen {
 public:
  static constexpr double CHIP_WIDTH = 200;

  /// `onContinue` gets the picks.
  explicit KeepsBeat(std::function<void(const std::vector<std::string>&)> onContinue);

  OnbText headline{*this, 0.3, "What keeps you up?"};
  OnbText sub{*this, 1.0, "Pick all that apply."};
  OnbReveal chips{*this, 1.5};
  OnbPill button;

  /// The chips' labels.
  [[nodiscard]] const std::vector<std::string>& labels() const { return labels_; }
  [[nodiscard]] bool isSelected(std::size_t chip) const;
  /// A chip was pressed: picks it, or takes its pick back.
  void toggle(std::size_t chip);
  /// Lower-cased labels, in the order they were picked.
  [[nodiscard]] const std::vector<std::string>& picks() const { return *picks_; }

 private:
  std::vector<std::string> labels_;
  Published<std::vector<std::string>> picks_{this, {}};
};

}  // namespace dormel
