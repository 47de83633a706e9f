// Plays a night on a simulated machine under the eyes of the watch.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/nights/NightWatch.h"
#include "tools/nights/RandomNight.h"

namespace dormel::nights {

struct Outcome {
  std::optional<Fault> fault;
  std::vector<std::string> journal;  ///< when it was asked for
};

/// Plays it from beginning to end, or to the first fault. The same night always goes the same way.
[[nodiscard]] Outcome play(const RandomNight& night, bool withJournal = false);

}  // namespace dormel::nights
