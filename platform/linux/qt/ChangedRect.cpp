#include "platform/linux/qt/ChangedRect.h"

#include <algorithm>
#include <cassert>
#include <cstring>

namespace dormel {
namespace {

const std::uint32_t* row(const Pixels& pixels, int y) { return pixels.data + y * pixels.stride; }

}  // namespace

PixelRect changedRect(const Pixels& before, const Pixels& after) {
  assert(before.width == after.width && before.height == after.height);
  const int width = after.width;
  const int height = after.height;
  const auto differs = [&](int y) {
    return std::memcmp(row(before, y), row(after, y), static_cast<std::size_t>(width) * sizeof(std::uint32_t)) != 0;
  };

  int top = 0;
  while (top < height && !differs(top)) ++top;
  if (top == height) return {};
  int bottom = height;
  while (!differs(bottom - 1)) --bottom;

  int left = width;
  int right = 0;
  for (int y = top; y < bottom; ++y) {
    const std::uint32_t* a = row(before, y);
    const std::uint32_t* b = row(after, y);
    left = static_cast<int>(std::mismatch(a, a + left, b).first - a);
    int end = width;
    while (end > right && a[end - 1] == b[end - 1]) --end;
    right = std::max(right, end);
  }
  return {left, top, right - left, bottom - top};
}

}  // namespace dormel
