// The two questions about Unicode text that the key labels need.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace dormel {

/// `utf8` upper-cased by Unicode's full mapping (one character may become two), no language's own rules applied.
/// Nothing when it is not UTF-8.
[[nodiscard]] std::optional<std::string> upperCased(std::string_view utf8);

/// Whether `utf8` is exactly one character as a reader counts them, and that is a letter or a number.
[[nodiscard]] bool isOneLetterOrNumber(std::string_view utf8);

}  // namespace dormel
