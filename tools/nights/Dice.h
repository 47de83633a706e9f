// Random draws that are the same on every machine and with every standard library.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace dormel::nights {

class Dice {
 public:
  explicit Dice(std::uint64_t seed) : state_(seed) {}

  std::uint64_t next() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15U);
    z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
    z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
    return z ^ (z >> 31U);
  }
  /// Uniform, both ends included. The bias of the remainder is nothing that a night would notice.
  std::int64_t between(std::int64_t low, std::int64_t high) {
    return low + static_cast<std::int64_t>(next() % static_cast<std::uint64_t>(high - low + 1));
  }
  bool percent(int chance) { return between(1, 100) <= chance; }
  /// As many short ones as long ones: each doubling is as likely as the next. `low` at least 1.
  std::int64_t spread(std::int64_t low, std::int64_t high) {
    const double doublings = std::log2(static_cast<double>(high) / static_cast<double>(low));
    const double drawn = std::ldexp(static_cast<double>(next() >> 11U), -53) * doublings;
    return std::clamp(static_cast<std::int64_t>(static_cast<double>(low) * std::exp2(drawn)), low, high);
  }

 private:
  std::uint64_t state_;
};

}  // namespace dormel::nights
