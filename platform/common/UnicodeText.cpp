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

/// Whether it is one character whose first code point is of one of these general categories.
bool isOneOf(std::string_view utf8, uint32_t categories) {
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
