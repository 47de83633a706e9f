// How the first run moves: lengths in seconds, distances and radii in points, and cubic curves.
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

inline constexpr OnbCurve REVEAL_CURVE{0.2, 0.7, 0.3, 1.0};
inline constexpr Seconds REVEAL_DURATION = 1.1;
inline constexpr double REVEAL_RISE = 14;  ///< begins that much below its place
inline constexpr double REVEAL_BLUR = 4;

/// The leaving screen. The entering one is there at once.
inline constexpr OnbCurve EVAPORATE_CURVE{0.4, 0.0, 0.9, 1.0};
inline constexpr Seconds EVAPORATE_DURATION = 0.85;
inline constexpr double EVAPORATE_RISE = 26;
inline constexpr double EVAPORATE_BLUR = 7;

/// The stroke of the mark, from the moment its screen is shown.
inline constexpr OnbCurve MARK_CURVE{0.5, 0.0, 0.2, 1.0};
inline constexpr Seconds MARK_DELAY = 0.9;
inline constexpr Seconds MARK_DURATION = 2.4;

/// On the reveal curve.
inline constexpr Seconds WHEEL_STEP_DURATION = 0.4;
inline constexpr Seconds CHIP_DURATION = 0.3;
inline constexpr Seconds PHASE_DURATION = 1.0;
inline constexpr double PHASE_BELOW = 12;  ///< where a phase's block waits
inline constexpr double PHASE_ABOVE = 16;  ///< where it goes
/// Ease-out, ease-in-out.
inline constexpr Seconds HOVER_DURATION = 0.25;
inline constexpr Seconds ENABLED_DURATION = 0.2;
inline constexpr double DISABLED_OPACITY = 0.25;
/// Linear.
inline constexpr Seconds RING_DURATION = 3.0;

}  // namespace onbMotion

}  // namespace dormel
