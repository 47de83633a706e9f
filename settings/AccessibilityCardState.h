// What the card of a night without the permission shows at one moment, as plain values.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Wording.h"

namespace dormel {

struct AccessibilityCardState {
  /// What its button asks for, see PaintedView::act.
  static constexpr std::uint32_t OPEN_SETTINGS = 1;

  bool toggleOn = false;
  PermissionCardWords words;

  [[nodiscard]] std::vector<std::string> plainLines() const;
  friend bool operator==(const AccessibilityCardState&, const AccessibilityCardState&) = default;
};

[[nodiscard]] std::string encoded(const AccessibilityCardState& state);
/// Nothing when the bytes are not exactly one state.
[[nodiscard]] std::optional<AccessibilityCardState> decodedAccessibilityCard(std::string_view bytes);

}  // namespace dormel
