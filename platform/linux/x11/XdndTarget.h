// Which window takes a drop at a place of the screen, by the common drag-and-drop protocol. Main thread only.
#pragma once

#include <cstdint>

#include "platform/linux/x11/Connection.h"

namespace dormel::x11 {

struct XdndTarget {
  xcb_window_t window = XCB_NONE;    ///< none: nothing here takes drops
  xcb_window_t receiver = XCB_NONE;  ///< where its messages go; another window when it has a proxy
  std::uint32_t version = 0;
  friend bool operator==(const XdndTarget&, const XdndTarget&) = default;
};

struct XdndTargetAtoms {
  explicit XdndTargetAtoms(Connection& connection);
  xcb_atom_t aware;
  xcb_atom_t proxy;
};

/// The outermost window there that takes drops; the root window only where no other is. Windows that let the pointer
/// through are not in the way.
[[nodiscard]] XdndTarget findXdndTarget(Connection& connection, const XdndTargetAtoms& atoms, int x, int y);

}  // namespace dormel::x11
