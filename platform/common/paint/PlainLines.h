// A picture of a few lines of text without any toolkit: glyphs that were drawn when the program was built. What a
// locked-out user reads when no painter can be had. Any thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace dormel::paint {

/// What stands behind the lines: as black as the window around them.
inline constexpr std::uint32_t PLAIN_GROUND = 0xFF000000;

/// Whether there are glyphs for all of it: Latin, Greek and Cyrillic letters.
[[nodiscard]] bool canWritePlainly(std::string_view utf8);

/// `lines` in the middle of a picture of that size in pixels, light on a dark ground, as Canvas has pixels. A line that
/// is too long is broken where it has two spaces, or else at any.
[[nodiscard]] std::vector<std::uint32_t> drawPlainLines(const std::vector<std::string>& lines, int width, int height,
                                                        double scale);

/// One glyph at one size: coverage by rows, 0 to 255.
struct PlainGlyph {
  std::uint32_t codePoint;
  std::uint16_t offset;  ///< into the size's coverage, in units of 16 bytes
  std::uint8_t width;
  std::uint8_t height;
  std::int8_t left;  ///< from the pen
  std::int8_t top;   ///< above the line that letters stand on
  std::uint8_t advance;
};

struct PlainFont {
  int size;  ///< pixels to the em
  int lineHeight;
  const PlainGlyph* glyphs;  ///< by code point
  std::size_t count;
  const std::uint8_t* coverage;
};

/// Made by tools/glyphs, the small size first.
extern const PlainFont PLAIN_FONTS[2];

}  // namespace dormel::paint
