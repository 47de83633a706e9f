// The screens of the first run, in their order, and how one moves among them besides forwards. Main thread only.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace dormel {

/// The raw values are stored: they never change.
enum class OnboardingBeat : std::int8_t {
  brand = 0,
  promise = 1,
  q1Latest = 2,
  q2Nights = 3,
  q3Want = 4,
  q4Keeps = 5,
  mirror = 6,
  howItWorks = 7,
  accessibility = 8,
  demo = 9,
  debrief = 10,
  science = 11,
  schedule = 12,
  finale = 13,
};

inline constexpr std::array ONBOARDING_BEATS{
    OnboardingBeat::brand,         OnboardingBeat::promise, OnboardingBeat::q1Latest, OnboardingBeat::q2Nights,
    OnboardingBeat::q3Want,        OnboardingBeat::q4Keeps, OnboardingBeat::mirror,   OnboardingBeat::howItWorks,
    OnboardingBeat::accessibility, OnboardingBeat::demo,    OnboardingBeat::debrief,  OnboardingBeat::science,
    OnboardingBeat::schedule,      OnboardingBeat::finale};

[[nodiscard]] constexpr int rawValue(OnboardingBeat beat) { return static_cast<int>(beat); }
/// The beat of a raw value; nothing for any other number.
[[nodiscard]] std::optional<OnboardingBeat> onboardingBeat(std::int64_t rawValue);

/// Where the back button of a beat leads; nothing where there is none.
[[nodiscard]] std::optional<OnboardingBeat> backTarget(OnboardingBeat beat);

/// Where a first run that was interrupted begins again: the beginning, the permission or the choice of the hour,
/// whichever was last reached. Read from the defaults store; anything but a beat in there reads as the beginning.
[[nodiscard]] OnboardingBeat resumePoint();

}  // namespace dormel
