// Texts of the first run. All of them are plain: nothing in them is to be read as markup but what is said here.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "onboarding/OnbReveal.h"

namespace dormel {

/// A piece of a line. In a headline `strong` is emphasis; in a line it is semibold beside dimmed pieces.
struct OnbSpan {
  std::string text;
  bool strong = false;
  friend bool operator==(const OnbSpan&, const OnbSpan&) = default;
};

/// A headline's pieces: what stands between two asterisks is strong, and those are not shown. Asterisks that enclose
/// nothing, or have no partner, are shown as they are.
[[nodiscard]] std::vector<OnbSpan> headlineSpans(std::string_view markdown);
/// The pieces without what sets them apart: for a screen reader.
[[nodiscard]] std::string plainText(const std::vector<OnbSpan>& spans);

/// A text that comes in: headline, sub-line, kicker or whisper, as the screen says.
struct OnbText {
  OnbText(OnboardingScreen& screen, Seconds delay, std::string line) : text(std::move(line)), reveal(screen, delay) {}
  std::string text;
  OnbReveal reveal;
};

}  // namespace dormel
