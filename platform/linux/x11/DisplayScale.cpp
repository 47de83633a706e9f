#include "platform/linux/x11/DisplayScale.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

namespace dormel::x11 {

std::optional<double> xftDpi(std::string_view resources) {
  constexpr std::string_view KEY = "Xft.dpi:";
  while (!resources.empty()) {
    const auto end = resources.find('\n');
    const std::string_view line = resources.substr(0, end);
    resources.remove_prefix(end == std::string_view::npos ? resources.size() : end + 1);
    if (!line.starts_with(KEY)) continue;
    const double dpi = std::strtod(std::string(line.substr(KEY.size())).c_str(), nullptr);
    if (dpi >= 24 && dpi <= 1536) return dpi;
  }
  return std::nullopt;
}

double displayScale(std::optional<double> dpi, int mainWidthPixels, int mainWidthMillimetres) {
  constexpr double MILLIMETRES_PER_INCH = 25.4;
  if (dpi) return std::max(1.0, std::round(*dpi / 96 * 4) / 4);
  if (mainWidthMillimetres <= 0) return 1;
  return mainWidthPixels * MILLIMETRES_PER_INCH / mainWidthMillimetres >= 192 ? 2 : 1;
}

}  // namespace dormel::x11
