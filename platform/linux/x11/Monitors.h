// The monitors of an X server as rectangles of its root window.
#pragma once

#include <string>
#include <vector>

#include "platform/common/Canvas.h"
#include "platform/linux/x11/Connection.h"

namespace dormel::x11 {

struct Monitor {
  std::string name;
  PixelRect area;
  bool isPrimary = false;
  int widthMillimetres = 0;  ///< 0 when not known
  friend bool operator==(const Monitor&, const Monitor&) = default;
};

/// The monitors that show something: the primary one first (the first one is, when the server names none), then
/// in the server's order; one that shows only what another shows as well (a mirror) is left out. Without `randr`, and
/// only then, the whole root counts as one monitor. Asks the server.
[[nodiscard]] std::vector<Monitor> queryMonitors(Connection& connection, bool randr);

}  // namespace dormel::x11
