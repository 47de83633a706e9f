// The windows of all applications, as the window server has them on screen. Main thread only.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/Geometry.h"

namespace dormel {

struct ListedWindow {
  /// Of the owner. One that does not say has a negative number, here and among the running applications.
  std::int32_t ownerPid = 0;
  int layer = 0;  ///< 0 for ordinary windows
  /// With what the desktop draws around it, in points from the top left corner of the primary display, y downwards;
  /// a figure that is not known is 0. Nothing when the place is not known at all.
  std::optional<Rect> bounds;
};

class WindowList {
 public:
  virtual ~WindowList() = default;
  /// Those that can be seen now, the frontmost first, without the desktop's own (its background, bars and docks).
  /// Nothing when the server does not answer.
  [[nodiscard]] virtual std::optional<std::vector<ListedWindow>> onScreen() const = 0;
};

}  // namespace dormel
