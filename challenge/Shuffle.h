// Uniform picks and shuffles from the secure random source: nobody may learn which keys come next, and no key may
// come more often than another.
#pragma once

#include <cassert>
#include <cstdint>
#include <utility>
#include <vector>

#include "platform/Platform.h"
#include "platform/Random.h"

namespace dormel {

/// A uniform number in [0, range), range at least 1. Multiply and keep the high half; draws whose low half falls
/// below 2^64 mod range are thrown away, which makes every result exactly as likely as every other.
[[nodiscard]] inline std::uint64_t uniformBelow(std::uint64_t range) {
  assert(range > 0);
  __extension__ using Wide = unsigned __int128;
  const std::uint64_t threshold = (0 - range) % range;
  for (;;) {
    const Wide product = static_cast<Wide>(platform().random.next()) * range;
    if (static_cast<std::uint64_t>(product) >= threshold) return static_cast<std::uint64_t>(product >> 64);
  }
}

/// A Fisher-Yates shuffle of the items, from the first position to the last but one.
template <typename T>
[[nodiscard]] std::vector<T> shuffled(std::vector<T> items) {
  for (std::size_t i = 0; i + 1 < items.size(); ++i) {
    const std::size_t j = i + static_cast<std::size_t>(uniformBelow(items.size() - i));
    if (j != i) std::swap(items[i], items[j]);
  }
  return items;
}

}  // namespace dormel
