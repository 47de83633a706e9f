// What the fuzz targets share: each reads any bytes, must not crash, and checks what has to hold whatever they are.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace dormel::fuzz {

/// Ends the process as a fault does, so that the input is kept.
inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::abort();
}

inline std::string_view text(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

/// The input as a command line: words with line feeds between them.
inline std::vector<std::string> words(std::string_view input) {
  std::vector<std::string> found;
  for (std::size_t at = 0; at <= input.size();) {
    const std::size_t end = std::min(input.find('\n', at), input.size());
    found.emplace_back(input.substr(at, end - at));
    at = end + 1;
  }
  return found;
}

}  // namespace dormel::fuzz
