// The room around a panel for its shadow. A compositor's own differs from none to a grey box, so the panel's picture
// paints it: it is larger than the panel's frame by the margin, and the frame stands in its middle. Points.
#pragma once

#include "platform/Windows.h"

namespace dormel {

inline constexpr double SHADOW_MARGIN = 24;

[[nodiscard]] inline double shadowMargin(const WindowStyle& style) { return style.hasShadow ? SHADOW_MARGIN : 0; }

[[nodiscard]] inline Rect outset(const Rect& rect, double margin) {
  return {rect.x - margin, rect.y - margin, rect.width + 2 * margin, rect.height + 2 * margin};
}

}  // namespace dormel
