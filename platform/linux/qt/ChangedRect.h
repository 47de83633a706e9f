// What differs between two pictures of the same size.
#pragma once

#include "platform/common/Canvas.h"

namespace dormel {

/// The smallest rectangle that holds every differing pixel; empty when there is none. Compares whole rows first, so
/// that the cost is that of reading both pictures once.
[[nodiscard]] PixelRect changedRect(const Pixels& before, const Pixels& after);

}  // namespace dormel
