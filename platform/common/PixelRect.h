// Rectangles of whole pixels, from the top left, y downwards.
#pragma once

#include <algorithm>

namespace dormel {

struct PixelRect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  [[nodiscard]] bool empty() const { return width <= 0 || height <= 0; }
  friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

/// Empty where they do not meet.
[[nodiscard]] inline PixelRect intersection(const PixelRect& a, const PixelRect& b) {
  const int left = std::max(a.x, b.x);
  const int top = std::max(a.y, b.y);
  return {left, top, std::min(a.x + a.width, b.x + b.width) - left, std::min(a.y + a.height, b.y + b.height) - top};
}

/// The smallest that holds both.
[[nodiscard]] inline PixelRect united(const PixelRect& a, const PixelRect& b) {
  if (a.empty()) return b;
  if (b.empty()) return a;
  const int left = std::min(a.x, b.x);
  const int top = std::min(a.y, b.y);
  return {left, top, std::max(a.x + a.width, b.x + b.width) - left, std::max(a.y + a.height, b.y + b.height) - top};
}

[[nodiscard]] inline bool contains(const PixelRect& outer, const PixelRect& inner) {
  return outer.x <= inner.x && outer.y <= inner.y && outer.x + outer.width >= inner.x + inner.width &&
         outer.y + outer.height >= inner.y + inner.height;
}

}  // namespace dormel
