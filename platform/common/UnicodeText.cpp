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

}  // namespace

std::optional<std::string> upperCased(std::string_view utf8) {
  if (utf8.empty()) return std::string();
  if (u8_check(bytes(utf8), utf8.size()) != nullptr) return {};
  std::size_t length = 0;
  const std::unique_ptr<uint8_t, decltype(&std::free)> upper(
      u8_toupper(bytes(utf8), utf8.size(), nullptr, nullptr, nullptr, &length), &std::free);
  if (!upper) return {};
  return std::string(reinterpret_cast<const char*>(upper.get()), length);
}

bool isOneLetterOrNumber(std::string_view utf8) {
  if (utf8.empty() || u8_check(bytes(utf8), utf8.size()) != nullptr) return false;
  const uint8_t* begin = bytes(utf8);
  const uint8_t* end = begin + utf8.size();
  if (u8_grapheme_next(begin, end) != end) return false;
  ucs4_t first = 0;
  u8_mbtouc(&first, begin, utf8.size());
  return uc_is_general_category(first, UC_CATEGORY_L) || uc_is_general_category(first, UC_CATEGORY_N);
}

}  // namespace dormel
