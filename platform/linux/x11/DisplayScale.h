// How many pixels a point has on this desktop: one figure for all screens, as X applications have it.
#pragma once

#include <optional>
#include <string_view>

namespace dormel::x11 {

/// The "Xft.dpi" of a resource database (the RESOURCE_MANAGER property); nothing when it has none or nonsense.
[[nodiscard]] std::optional<double> xftDpi(std::string_view resources);

/// The user's own figure decides: `dpi` / 96 to the nearest quarter, at least 1. Without one, 2 where the main
/// screen has 192 pixels to the inch or more by its physical width, else 1. A width of 0 mm is not known.
[[nodiscard]] double displayScale(std::optional<double> dpi, int mainWidthPixels, int mainWidthMillimetres);

}  // namespace dormel::x11
