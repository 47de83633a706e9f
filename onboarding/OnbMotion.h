// What of the first run's motion is told moment by moment, in seconds and cubic curves. All other motion stands where
// it is drawn.
#pragma once

#include "platform/Time.h"

namespace dormel {

/// Control points of a cubic curve from (0, 0) to (1, 1); x is time.
struct OnbCurve {
  double x1, y1, x2, y2;
  /// How far the motion is at the share `time` of its length, both 0 to 1; outside it stands still.
  [[nodiscard]] double at(double time) const;
};

namespace onbMotion {

/// The stroke of the mark, from the moment its screen is shown.
inline constexpr OnbCurve MARK_CURVE{0.5, 0.0, 0.2, 1.0};
inline constexpr Seconds MARK_DELAY = 0.9;
inline constexpr Seconds MARK_DURATION = 2.4;

/// The ring, linear.
inline constexpr Seconds RING_DURATION = 3.0;

}  // namespace onbMotion

}  // namespace dormel
