// A piece of a line. Texts of the first run are plain: nothing in them is read as markup but what is said here.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace dormel {

/// In a headline `strong` is emphasis; in a line it is semibold beside dimmed pieces.
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

}  // namespace dormel
