// The part of a picture that is more opaque than not, as few rectangles: the outline of a panel where windows have
// no alpha channel of their own.
#pragma once

#include <xcb/xproto.h>

#include <vector>

#include "platform/common/Canvas.h"

namespace dormel::x11 {

/// Disjoint rectangles, sorted by rows, then columns; equal rows are put together.
[[nodiscard]] std::vector<xcb_rectangle_t> opaqueRegion(const Pixels& pixels);

}  // namespace dormel::x11
