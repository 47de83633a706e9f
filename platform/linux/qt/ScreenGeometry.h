// Where a frame of the logic (points from the main screen's bottom left corner, y upwards) is for the toolkit, which
// has screens, units and an origin of its own. Main thread only.
#pragma once

#include <QRectF>

#include "platform/Screens.h"

namespace dormel {

[[nodiscard]] QRectF toolkitGeometry(const Rect& frame, const Screens& screens);

}  // namespace dormel
