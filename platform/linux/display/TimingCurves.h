// The media timing curves: cubic Béziers from (0,0) to (1,1).
#pragma once

#include "platform/Windows.h"

namespace dormel {

/// How far an animation has come when `t` (0 to 1) of its time is over.
[[nodiscard]] double eased(TimingCurve curve, double t);

}  // namespace dormel
