#include "platform/UnicodeText.h"

#include <unicase.h>
#include <unictype.h>
#include <unigbrk.h>
#include <unistr.h>

#include <cstdlib>
#include <memory>

namespace dormel {
namespace {

const uint8_t* bytes(std::string_view text) { return reinterpret_cast<const uint8_t*>(text.data()); }

// What keyboards print is mostly ASCII. It is answered without the library's tables: once looked into, they are a good
// part of what the process that locks holds in memory.

bool isOneAscii(std::string_view utf8) { return utf8.size() == 1 && static_cast<unsigned char>(utf8.front()) < 0x80; }

bool isBetween(char c, char first, char last) { return c >= first && c <= last; }

uint32_t categoriesOfAscii(char c) {
  if (isBetween(c, 'a', 'z') || isBetween(c, 'A', 'Z')) return UC_CATEGORY_MASK_L;
  if (isBetween(c, '0', '9')) return UC_CATEGORY_MASK_N;
  return isBetween(c, '!', '~') ? UC_CATEGORY_MASK_P | UC_CATEGORY_MASK_S : 0;
}

/// Whether it is one character whose first code point is of one of these general categories.
bool isOneOf(std::string_view utf8, uint32_t categories) {
  if (isOneAscii(utf8)) return (categoriesOfAscii(utf8.front()) & categories) != 0;
  if (utf8.empty() || u8_check(bytes(utf8), utf8.size()) != nullptr) return false;
  const uint8_t* begin = bytes(utf8);
  const uint8_t* end = begin + utf8.size();
  if (u8_grapheme_next(begin, end) != end) return false;
  ucs4_t first = 0;
  u8_mbtouc(&first, begin, utf8.size());
  return uc_is_general_category_withtable(first, categories);
}

}  // namespace

std::optional<std::string> titleCased(std::string_view utf8) {
  if (utf8.empty()) return std::string();
  if (isOneAscii(utf8)) {
    const char c = utf8.front();
    return std::string(1, isBetween(c, 'a', 'z') ? static_cast<char>(c - 'a' + 'A') : c);
  }
  if (u8_check(bytes(utf8), utf8.size()) != nullptr) return {};
  std::size_t length = 0;
  const std::unique_ptr<uint8_t, decltype(&std::free)> title(
      u8_totitle(bytes(utf8), utf8.size(), nullptr, nullptr, nullptr, &length), &std::free);
  if (!title) return {};
  return std::string(reinterpret_cast<const char*>(title.get()), length);
}

bool isOneLetterOrNumber(std::string_view utf8) { return isOneOf(utf8, UC_CATEGORY_MASK_L | UC_CATEGORY_MASK_N); }

bool isOneVisibleCharacter(std::string_view utf8) {
  return isOneOf(utf8, UC_CATEGORY_MASK_L | UC_CATEGORY_MASK_N | UC_CATEGORY_MASK_P | UC_CATEGORY_MASK_S);
}

}  // namespace dormel
