#include "platform/common/paint/PlainLines.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace dormel::paint {
namespace {

constexpr double LINE_GAP = 1.9;
constexpr double BRIGHTNESS = 0.95;

std::optional<std::vector<char32_t>> codePoints(std::string_view utf8) {
  std::vector<char32_t> points;
  for (std::size_t i = 0; i < utf8.size();) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    const int length = lead < 0x80 ? 1 : lead < 0xC0 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF8 ? 4 : 0;
    if (length == 0 || i + static_cast<std::size_t>(length) > utf8.size()) return {};
    char32_t point = length == 1 ? lead : lead & (0x7FU >> length);
    for (int more = 1; more < length; ++more) {
      const auto next = static_cast<unsigned char>(utf8[i + static_cast<std::size_t>(more)]);
      if ((next & 0xC0) != 0x80) return {};
      point = point << 6 | (next & 0x3F);
    }
    points.push_back(point);
    i += static_cast<std::size_t>(length);
  }
  return points;
}

const PlainGlyph* glyph(const PlainFont& font, char32_t point) {
  const PlainGlyph* end = font.glyphs + font.count;
  const auto* found = std::lower_bound(font.glyphs, end, point,
                                       [](const PlainGlyph& g, char32_t wanted) { return g.codePoint < wanted; });
  return found != end && found->codePoint == point ? found : nullptr;
}

/// Where it has no glyph, a question mark stands.
const PlainGlyph& shown(const PlainFont& font, char32_t point) {
  const PlainGlyph* found = glyph(font, point);
  return found != nullptr ? *found : *glyph(font, U'?');
}

int widthOf(const PlainFont& font, const std::u32string& text) {
  int width = 0;
  for (const char32_t point : text) width += shown(font, point).advance;
  return width;
}

std::vector<std::u32string> broken(const PlainFont& font, const std::string& line, int width) {
  const auto points = codePoints(line).value_or(std::vector<char32_t>{U'?'});
  std::u32string rest(points.begin(), points.end());
  std::vector<std::u32string> parts;
  while (widthOf(font, rest) > width) {
    std::size_t at = std::u32string::npos;
    for (const std::u32string_view gap : {U"  ", U" "}) {
      for (std::size_t end = rest.rfind(gap); end != std::u32string::npos && end > 0; end = rest.rfind(gap, end - 1)) {
        at = end;
        if (widthOf(font, rest.substr(0, end)) <= width) break;
      }
      if (at != std::u32string::npos) break;
    }
    if (at == std::u32string::npos) break;  // one long word: its middle is shown
    parts.push_back(rest.substr(0, at));
    rest.erase(0, std::min(rest.find_first_not_of(U' ', at), rest.size()));
  }
  parts.push_back(rest);
  for (std::u32string& part : parts) {
    while (!part.empty() && part.back() == U' ') part.pop_back();
  }
  return parts;
}

class Picture {
 public:
  Picture(int width, int height)
      : width_(width),
        height_(height),
        pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), PLAIN_GROUND) {}

  void write(const PlainFont& font, const std::u32string& text, int pen, int base) {
    for (const char32_t point : text) {
      const PlainGlyph& g = shown(font, point);
      const std::uint8_t* coverage = font.coverage + std::size_t{g.offset} * 16;
      for (int y = 0; y < g.height; ++y) {
        for (int x = 0; x < g.width; ++x) blend(pen + g.left + x, base - g.top + y, *coverage++);
      }
      pen += g.advance;
    }
  }

  [[nodiscard]] std::vector<std::uint32_t> take() { return std::move(pixels_); }

 private:
  void blend(int x, int y, std::uint8_t coverage) {
    if (x < 1 || y < 1 || x >= width_ - 1 || y >= height_ - 1) return;  // the edge stays clear, whatever does not fit
    std::uint32_t& pixel =
        pixels_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x)];
    const double part = BRIGHTNESS * coverage / 255;
    std::uint32_t mixed = 0xFF000000;
    for (const int shift : {0, 8, 16}) {
      const double ground = (pixel >> shift) & 0xFFU;
      mixed |= static_cast<std::uint32_t>(std::lround(ground + (255 - ground) * part)) << shift;
    }
    pixel = mixed;
  }

  int width_;
  int height_;
  std::vector<std::uint32_t> pixels_;
};

}  // namespace

bool canWritePlainly(std::string_view utf8) {
  const auto points = codePoints(utf8);
  return points && std::all_of(points->begin(), points->end(),
                               [](char32_t point) { return glyph(PLAIN_FONTS[0], point) != nullptr; });
}

std::vector<std::uint32_t> drawPlainLines(const std::vector<std::string>& lines, int width, int height, double scale) {
  const PlainFont& font = PLAIN_FONTS[scale < 1.5 ? 0 : 1];
  const int margin = font.size / 2;
  std::vector<std::u32string> rows;
  for (const std::string& line : lines) {
    for (auto& part : broken(font, line, width - 2 * margin)) rows.push_back(std::move(part));
  }
  // Closer together where they would not all have room.
  const int apart =
      rows.empty() ? 0 : std::min(static_cast<int>(font.size * LINE_GAP), height / static_cast<int>(rows.size()));
  int base = (height - apart * static_cast<int>(rows.size())) / 2 + (apart + font.size * 7 / 10) / 2;
  Picture picture(width, height);
  for (const std::u32string& row : rows) {
    picture.write(font, row, (width - widthOf(font, row)) / 2, base);
    base += apart;
  }
  return picture.take();
}

}  // namespace dormel::paint
