// The screens of the desktop, in points. Main thread only.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Geometry.h"

namespace dormel {

struct Screen {
  std::string name;   ///< the connector's, for people ("DP-1"); two screens may share one
  Rect frame;         ///< all of it
  Rect visibleFrame;  ///< without the desktop's bars and docks
  /// All of it as the window list measures: from the top left corner of the primary display, y downwards. Nothing when
  /// the window server knows it under no number.
  std::optional<Rect> displayBounds{};
};

class Screens {
 public:
  virtual ~Screens() = default;
  /// The screens that show something, the platform's order, mirrored ones once.
  [[nodiscard]] virtual std::vector<Screen> all() const = 0;
  /// The primary screen; nothing when there is none.
  [[nodiscard]] virtual std::optional<Screen> main() const = 0;
};

}  // namespace dormel
