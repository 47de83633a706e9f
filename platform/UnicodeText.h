// The questions about Unicode text that the key labels need.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace dormel {

/// `utf8` as it is written at the head of a word, by Unicode's full mapping (one character may become two), no
/// language's own rules applied. For most scripts that is the upper case. It is not for Georgian, whose capitals only
/// ever make up whole words and are on no keyboard. Nothing when it is not UTF-8.
[[nodiscard]] std::optional<std::string> titleCased(std::string_view utf8);

/// Whether `utf8` is exactly one character as a reader counts them, and that is a letter or a number.
[[nodiscard]] bool isOneLetterOrNumber(std::string_view utf8);

/// Whether `utf8` is exactly one character that shows something by itself: no space, no control, no lone accent.
[[nodiscard]] bool isOneVisibleCharacter(std::string_view utf8);

}  // namespace dormel
