// What keys have locked in the server: the layout in force (the locked group), Caps Lock, Num Lock. A grab keeps keys
// from programs, not from the server's own actions, so that keys pressed on a locked desktop would change all that
// unseen. Main thread only, but for an object of its own on a connection of its own.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/ServerFeatures.h"

namespace dormel::x11 {

class LockedState {
 public:
  LockedState(std::shared_ptr<Connection> connection, const ServerFeatures& features);

  /// Remembers what is locked now, on every keyboard, also in a property of the root window: it can be put back from
  /// there when this process dies.
  void remember();
  /// Locks again what is remembered, by this process or an earlier one, and forgets it.
  void restore();

 private:
  struct Device {
    std::uint32_t id;
    std::uint32_t group;
    std::uint32_t modifiers;
    friend bool operator==(const Device&, const Device&) = default;
  };
  [[nodiscard]] std::vector<Device> query();

  std::shared_ptr<Connection> connection_;
  ServerFeatures features_;
  xcb_atom_t property_ = XCB_ATOM_NONE;
  std::vector<Device> remembered_;
};

}  // namespace dormel::x11
