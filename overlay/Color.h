// Colours as the overlay's logic names them; the drawing side turns them into its own.
#pragma once

namespace dormel {

/// sRGB components and opacity, 0 to 1.
struct Color {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;
  friend bool operator==(const Color&, const Color&) = default;
};

namespace color {
[[nodiscard]] constexpr Color white(double opacity) { return {1, 1, 1, opacity}; }
[[nodiscard]] constexpr Color black(double opacity) { return {0, 0, 0, opacity}; }
/// The desktop's standard red and orange in their dark appearance.
[[nodiscard]] constexpr Color red(double opacity) { return {1.0, 69.0 / 255, 58.0 / 255, opacity}; }
[[nodiscard]] constexpr Color orange(double opacity) { return {1.0, 159.0 / 255, 10.0 / 255, opacity}; }
}  // namespace color

}  // namespace dormel
