#include "tools/nights/Shrink.h"

#include <algorithm>
#include <utility>

namespace dormel::nights {
namespace {

bool breaks(const RandomNight& night, Rule rule) {
  const auto fault = play(night).fault;
  return fault && fault->rule == rule;
}

/// Takes away parts of the list, halves first, then ever smaller ones, as long as the fault stays.
void takeAway(RandomNight& night, Rule rule) {
  std::size_t part = std::max<std::size_t>(1, night.happenings.size() / 2);
  for (;;) {
    bool any = false;
    for (std::size_t from = 0; from < night.happenings.size();) {
      RandomNight fewer = night;
      const auto first = fewer.happenings.begin() + static_cast<std::ptrdiff_t>(from);
      const std::size_t count = std::min(part, fewer.happenings.size() - from);
      fewer.happenings.erase(first, first + static_cast<std::ptrdiff_t>(count));
      if (breaks(fewer, rule)) {
        night = std::move(fewer);
        any = true;
      } else {
        from += part;
      }
    }
    if (part == 1 && !any) return;
    if (part > 1) part = (part + 1) / 2;
  }
}

/// Halves the numbers as long as the fault stays.
void simplify(RandomNight& night, Rule rule) {
  for (std::size_t i = 0; i < night.happenings.size(); ++i) {
    for (std::size_t k = 0; k < 3; ++k) {
      for (;;) {
        RandomNight simpler = night;
        std::int64_t& number = simpler.happenings[i].n.at(k);
        if (number == 0) break;
        number /= 2;
        if (!breaks(simpler, rule)) break;
        night = std::move(simpler);
      }
    }
  }
}

}  // namespace

RandomNight shrunk(RandomNight night, Rule rule) {
  takeAway(night, rule);
  simplify(night, rule);
  takeAway(night, rule);
  return night;
}

}  // namespace dormel::nights
