// How much two rectangles share. Points.
#pragma once

#include <algorithm>

#include "platform/Geometry.h"

namespace dormel {

/// 0 when they only touch.
[[nodiscard]] inline double commonArea(const Rect& a, const Rect& b) {
  const double width = std::min(a.right(), b.right()) - std::max(a.x, b.x);
  const double height = std::min(a.top(), b.top()) - std::max(a.y, b.y);
  return width > 0 && height > 0 ? width * height : 0;
}

}  // namespace dormel
