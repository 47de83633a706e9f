// The answers of the first run, and the figures and sentences made of them. Main thread only.
//
// Hours of the evening and the night are counted past midnight without wrapping: 22 is 10 PM, 24 midnight, 28 4 AM.
// The hour of the day is that modulo 24.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/Observable.h"

namespace dormel {

/// Keys of the defaults store.
namespace defaultsKey {
inline constexpr const char* onboardingBeat = "onboardingV2Beat";
inline constexpr const char* onboardingLate = "onboardingV2Late";
inline constexpr const char* onboardingNights = "onboardingV2Nights";
inline constexpr const char* onboardingWant = "onboardingV2Want";
inline constexpr const char* onboardingKeeps = "onboardingV2Keeps";
inline constexpr const char* onboardingLock = "onboardingV2Lock";
}  // namespace defaultsKey

/// "midnight", or the hour as labels write it: "1 AM", "11 PM". Any hour.
[[nodiscard]] std::string spokenHour(int nightHour);
/// The hour of the day, 0 to 23. Any hour.
[[nodiscard]] int dayHour(int nightHour);

class OnboardingModel : public Observable {
 public:
  OnboardingModel() = default;
  /// With what `save` stored. What is missing, of another type or out of range is as in a fresh model.
  [[nodiscard]] static std::shared_ptr<OnboardingModel> restored();

  /// Stores all answers; an absent one as -1.
  void save() const;

  /// The hours of sleep lost in a week, at least 2; nothing while an answer is missing or nothing is lost.
  [[nodiscard]] std::optional<int> weeklyHours() const;
  /// One sentence or two about the habit: "You're up until about 2 AM, most nights. Mostly work."
  [[nodiscard]] std::string mirrorLine() const;
  /// The lock hour to begin with: the hour the user wants to be asleep, 22 to 26; midnight while it is absent.
  [[nodiscard]] int suggestedLock() const;

  /// The latest hour the user goes to bed.
  Published<std::optional<int>> late{this, std::nullopt};
  /// How many nights a week that happens: 2, 4 or 7.
  Published<std::optional<double>> nightsFactor{this, std::nullopt};
  /// The hour the user wants to be asleep.
  Published<std::optional<int>> want{this, std::nullopt};
  /// What keeps the user up: values of the options, in the order they were picked.
  Published<std::vector<std::string>> keeps{this, {}};
  /// The lock hour that was chosen.
  Published<int> lockNight{this, 24};
};

}  // namespace dormel
