// Colours as the overlay's logic names them; the drawing side turns them into its own.
#pragma once

namespace dormel {

/// sRGB components and opacity, 0 to 1.
struct Ink {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;
  friend bool operator==(const Ink&, const Ink&) = default;
};

namespace ink {
[[nodiscard]] constexpr Ink white(double opacity) { return {1, 1, 1, opacity}; }
[[nodiscard]] constexpr Ink black(double opacity) { return {0, 0, 0, opacity}; }
/// The desktop's standard red and orange in their dark appearance.
[[nodiscard]] constexpr Ink red(double opacity) { return {1.0, 69.0 / 255, 58.0 / 255, opacity}; }
[[nodiscard]] constexpr Ink orange(double opacity) { return {1.0, 159.0 / 255, 10.0 / 255, opacity}; }
}  // namespace ink

}  // namespace dormel
