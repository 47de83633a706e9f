// The guide's window: it floats above the others and never becomes the key or the main one, so that a click into it
// leaves the focus with the settings window.
#pragma once

#include <memory>

#include "platform/Windows.h"

namespace dormel {

struct PassiveOverlayPanel {
  [[nodiscard]] static WindowStyle style();
  /// Not on screen yet, of that size.
  [[nodiscard]] static std::shared_ptr<Window> create(const Size& size);
};

}  // namespace dormel
