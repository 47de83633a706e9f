// A random source that repeats itself from its seed, or that says what a test tells it to.
#pragma once

#include <deque>
#include <random>
#include <vector>

#include "platform/Random.h"

namespace dormel {

class SimRandom : public SecureRandom {
 public:
  explicit SimRandom(std::uint64_t seed) : engine_(seed) {}

  std::uint64_t next() override {
    if (script_.empty()) return engine_();
    const std::uint64_t value = script_.front();
    script_.pop_front();
    return value;
  }

  void seed(std::uint64_t seed) { engine_.seed(seed); }
  /// These come next, before the seeded ones go on.
  void script(const std::vector<std::uint64_t>& values) { script_.assign(values.begin(), values.end()); }
  [[nodiscard]] std::size_t scriptedLeft() const { return script_.size(); }

 private:
  std::mt19937_64 engine_;
  std::deque<std::uint64_t> script_;
};

}  // namespace dormel
