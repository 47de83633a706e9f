// Points and rectangles as logic sees them: device-independent points, origin at the bottom left, y upwards.
// The platform turns them into pixels from the top left once, at its edge.
#pragma once

namespace dormel {

struct Size {
  double width = 0;
  double height = 0;
  friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
  [[nodiscard]] double right() const { return x + width; }
  [[nodiscard]] double top() const { return y + height; }
  friend bool operator==(const Rect&, const Rect&) = default;
};

}  // namespace dormel
