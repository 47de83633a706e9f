// The overlay's colours as QML takes them.
#pragma once

#include <QColor>

#include "overlay/Color.h"

namespace dormel {

[[nodiscard]] inline QColor toColor(const Color& color) {
  return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                          static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

}  // namespace dormel
