// Finds the few happenings of a night that are enough to break the same rule.
#pragma once

#include "tools/nights/NightRun.h"

namespace dormel::nights {

/// `night` with as few of its happenings as could be found, and with their numbers as small as they could be made,
/// that still breaks `rule`. No happening of the answer can be taken away.
[[nodiscard]] RandomNight shrunk(RandomNight night, Rule rule);

}  // namespace dormel::nights
