// What the grace period's pill shows at one moment, as plain values.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "overlay/Color.h"

namespace dormel {

struct GraceCountdownState {
  /// How much of the grace period is left, 1 down to 0.
  double progress = 0;
  /// White while there is time, orange in the last minute, red in its second half.
  Color urgencyColor;
  /// "4:05 remaining", "45s remaining".
  std::string text;
  friend bool operator==(const GraceCountdownState&, const GraceCountdownState&) = default;
};

[[nodiscard]] std::string encoded(const GraceCountdownState& state);
/// Nothing when the bytes are not exactly one state.
[[nodiscard]] std::optional<GraceCountdownState> decodedGraceCountdown(std::string_view bytes);

}  // namespace dormel
