// The overlay's colours as QML takes them.
#pragma once

#include <QColor>

#include "overlay/Ink.h"

namespace dormel {

[[nodiscard]] inline QColor toColor(const Ink& ink) {
  return QColor::fromRgbF(static_cast<float>(ink.red), static_cast<float>(ink.green), static_cast<float>(ink.blue),
                          static_cast<float>(ink.alpha));
}

}  // namespace dormel
