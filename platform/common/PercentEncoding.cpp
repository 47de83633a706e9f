#include "platform/PercentEncoding.h"

namespace dormel {

std::string percentEncoded(std::string_view path) {
  constexpr std::string_view PLAIN = "-._~/";
  constexpr std::string_view DIGITS = "0123456789ABCDEF";
  std::string text;
  for (const char c : path) {
    // Not by the locale: only these letters and digits stand for themselves.
    const bool isAlnum = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (isAlnum || PLAIN.find(c) != std::string_view::npos) {
      text += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    text += '%';
    text += DIGITS[byte >> 4U];
    text += DIGITS[byte & 15U];
  }
  return text;
}

}  // namespace dormel
