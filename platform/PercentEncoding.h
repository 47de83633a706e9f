// Paths as addresses write them. Any thread.
#pragma once

#include <string>
#include <string_view>

namespace dormel {

/// The bytes of a path, each that an address gives a meaning to, or may not hold at all, as "%" and two digits. Slashes
/// stay.
[[nodiscard]] std::string percentEncoded(std::string_view path);

}  // namespace dormel
