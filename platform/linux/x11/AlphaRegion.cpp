#include "platform/linux/x11/AlphaRegion.h"

#include <algorithm>
#include <cstdint>

namespace dormel::x11 {
namespace {

constexpr std::uint32_t HALF = 0x80000000;

std::vector<xcb_rectangle_t> runs(const std::uint32_t* row, int width, int y) {
  std::vector<xcb_rectangle_t> found;
  for (int x = 0; x < width;) {
    if (row[x] < HALF) {
      ++x;
      continue;
    }
    const int start = x;
    while (x < width && row[x] >= HALF) ++x;
    found.push_back(
        {static_cast<std::int16_t>(start), static_cast<std::int16_t>(y), static_cast<std::uint16_t>(x - start), 1});
  }
  return found;
}

bool sameColumns(const std::vector<xcb_rectangle_t>& row, const xcb_rectangle_t* above, std::size_t count) {
  return row.size() == count && std::equal(row.begin(), row.end(), above, [](const auto& a, const auto& b) {
           return a.x == b.x && a.width == b.width;
         });
}

}  // namespace

std::vector<xcb_rectangle_t> opaqueRegion(const Pixels& pixels) {
  std::vector<xcb_rectangle_t> region;
  std::size_t bandStart = 0;
  for (int y = 0; y < pixels.height; ++y) {
    const auto row = runs(pixels.data + y * pixels.stride, pixels.width, y);
    const bool adjoins = bandStart < region.size() && region[bandStart].y + region[bandStart].height == y;
    if (adjoins && sameColumns(row, region.data() + bandStart, region.size() - bandStart)) {
      for (std::size_t i = bandStart; i < region.size(); ++i) ++region[i].height;
      continue;
    }
    bandStart = region.size();
    region.insert(region.end(), row.begin(), row.end());
  }
  return region;
}

}  // namespace dormel::x11
