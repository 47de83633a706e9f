// The one place where points from the bottom left (logic) and pixels from the top left (the window server) meet.
// The origin of points is the bottom-left corner of the main screen, so that plugging another screen does not
// move the frames of those that were there.
#pragma once

#include <cmath>

#include "platform/Geometry.h"
#include "platform/common/PixelRect.h"

namespace dormel {

struct CoordinateSpace {
  double scale = 1;      ///< pixels to the point
  int originX = 0;       ///< the main screen's left edge, in pixels
  int originBottom = 0;  ///< the first pixel row below the main screen

  [[nodiscard]] Rect toPoints(const PixelRect& r) const {
    return {(r.x - originX) / scale, (originBottom - (r.y + r.height)) / scale, r.width / scale, r.height / scale};
  }
  /// Edges are rounded, so that rectangles that touch in points touch in pixels.
  [[nodiscard]] PixelRect toPixels(const Rect& r) const {
    const auto edge = [this](double points) { return static_cast<int>(std::lround(points * scale)); };
    const int left = originX + edge(r.x);
    const int top = originBottom - edge(r.top());
    return {left, top, originX + edge(r.right()) - left, originBottom - edge(r.y) - top};
  }
  friend bool operator==(const CoordinateSpace&, const CoordinateSpace&) = default;
};

}  // namespace dormel
