// The operating system's cryptographically secure random source. Any thread.
#pragma once

#include <cstdint>

namespace dormel {

class SecureRandom {
 public:
  virtual ~SecureRandom() = default;
  /// 64 uniform bits.
  virtual std::uint64_t next() = 0;
};

}  // namespace dormel
