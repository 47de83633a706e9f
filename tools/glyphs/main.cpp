// Draws the glyphs of platform/common/paint/PlainLines.h while the program is being built.
//
//   glyphs FONT.otf OUT.cpp
#include <ft2build.h>
#include FT_FREETYPE_H

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace {

struct Range {
  unsigned first;
  unsigned last;
};

// What keyboards print in the alphabets that the typeface has, and all that our own lines need. In ascending order.
constexpr Range RANGES[] = {{0x20, 0x7E},   {0xA0, 0x17F},    {0x218, 0x21B},  {0x386, 0x3CE},
                            {0x400, 0x4FF}, {0x1E9E, 0x1E9E}, {0x2013, 0x2026}};
constexpr int SIZES[] = {18, 36};

class Output {
 public:
  explicit Output(const char* path) : file_(path) {
    file_ << "// Made by tools/glyphs.\n#include \"platform/common/paint/PlainLines.h\"\n\nnamespace dormel::paint {\n"
             "namespace {\n\n";
  }

  bool write(FT_Face face, int size) {
    if (FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(size)) != 0) return false;
    std::vector<unsigned char> coverage;
    std::string glyphs;
    for (const Range& range : RANGES) {
      for (unsigned point = range.first; point <= range.last; ++point) {
        const FT_UInt index = FT_Get_Char_Index(face, point);
        if (index == 0 || FT_Load_Glyph(face, index, FT_LOAD_RENDER | FT_LOAD_NO_HINTING) != 0) continue;
        const FT_GlyphSlot slot = face->glyph;
        const FT_Bitmap& bitmap = slot->bitmap;
        while (coverage.size() % 16 != 0) coverage.push_back(0);
        if (coverage.size() / 16 > 65535 || bitmap.width > 255 || bitmap.rows > 255) return false;
        glyphs += "    {" + std::to_string(point) + ", " + std::to_string(coverage.size() / 16) + ", " +
                  std::to_string(bitmap.width) + ", " + std::to_string(bitmap.rows) + ", " +
                  std::to_string(slot->bitmap_left) + ", " + std::to_string(slot->bitmap_top) + ", " +
                  std::to_string((slot->advance.x + 32) / 64) + "},\n";
        for (unsigned y = 0; y < bitmap.rows; ++y) {
          const unsigned char* row = bitmap.buffer + static_cast<long>(y) * bitmap.pitch;
          coverage.insert(coverage.end(), row, row + bitmap.width);
        }
      }
    }
    const std::string name = std::to_string(size);
    file_ << "const PlainGlyph GLYPHS_" << name << "[] = {\n"
          << glyphs << "};\n\nconst std::uint8_t COVERAGE_" << name << "[] = {";
    for (std::size_t i = 0; i < coverage.size(); ++i)
      file_ << (i % 32 == 0 ? "\n" : "") << unsigned{coverage[i]} << ',';
    file_ << "};\n\n";
    fonts_ += "    {" + name + ", " + std::to_string(face->size->metrics.height / 64) + ", GLYPHS_" + name +
              ", sizeof GLYPHS_" + name + " / sizeof *GLYPHS_" + name + ", COVERAGE_" + name + "},\n";
    return true;
  }

  bool finish() {
    file_ << "}  // namespace\n\nconst PlainFont PLAIN_FONTS[2] = {\n"
          << fonts_ << "};\n\n}  // namespace dormel::paint\n";
    file_.close();
    return file_.good();
  }

 private:
  std::ofstream file_;
  std::string fonts_;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: glyphs FONT.otf OUT.cpp\n", stderr);
    return 2;
  }
  FT_Library library = nullptr;
  FT_Face face = nullptr;
  if (FT_Init_FreeType(&library) != 0 || FT_New_Face(library, argv[1], 0, &face) != 0) {
    std::fprintf(stderr, "glyphs: cannot read %s\n", argv[1]);
    return 1;
  }
  Output output(argv[2]);
  for (const int size : SIZES) {
    if (!output.write(face, size)) {
      std::fprintf(stderr, "glyphs: cannot draw %s at %d\n", argv[1], size);
      return 1;
    }
  }
  FT_Done_Face(face);
  FT_Done_FreeType(library);
  return output.finish() ? 0 : 1;
}
