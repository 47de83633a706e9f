// The answers that the questions offer, and the hours that the wheels offer.
#pragma once

#include <string>
#include <vector>

#include "onboarding/OnbWheel.h"

namespace dormel::onboardingOptions {

/// What chips and rows say.
template <typename Option>
[[nodiscard]] std::vector<std::string> labelsOf(const std::vector<Option>& options) {
  std::vector<std::string> labels;
  labels.reserve(options.size());
  for (const Option& option : options) labels.push_back(option.label);
  return labels;
}

/// 11 PM to "4 AM or later".
[[nodiscard]] std::vector<OnbWheel::Option> latest();
/// 10 PM to 1 AM.
[[nodiscard]] std::vector<OnbWheel::Option> want();
/// 10 PM to 2 AM.
[[nodiscard]] std::vector<OnbWheel::Option> lock();
inline constexpr int FIRST_LOCK = 22;
inline constexpr int LAST_LOCK = 26;

struct Nights {
  std::string label;
  double value;
};
[[nodiscard]] std::vector<Nights> nights();

struct Keep {
  std::string value;  ///< as it is stored
  std::string label;
};
[[nodiscard]] std::vector<Keep> keeps();
/// The same within a sentence, for a stored value: "Mostly …." What no chip says is as it was stored.
[[nodiscard]] std::string spokenKeep(const std::string& value);

}  // namespace dormel::onboardingOptions
