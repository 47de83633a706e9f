// What keys have locked in the server: the layout in force (the locked group), Caps Lock, Num Lock. A grab keeps keys
// from programs, not from the server's own actions, so that keys pressed on a locked desktop would change all that
// unseen. Main thread only, but for an object of its own on a connection of its own.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/KeyDevices.h"
#include "platform/linux/x11/Reply.h"
#include "platform/linux/x11/ServerFeatures.h"
#include "platform/linux/x11/Xkb.h"

namespace dormel::x11 {

class XkbLockState {
 public:
  XkbLockState(std::shared_ptr<Connection> connection, const ServerFeatures& features);

  /// What is locked on each keyboard, on its way.
  struct States {
    KeyDevices devices;
    std::vector<Asked<&xcb_xkb_get_state_reply>> asked;  ///< one for each
  };
  [[nodiscard]] States ask(const KeyDevices& devices);
  /// Remembers that, also in a property of the root window: it can be put back from there when this process dies.
  void remember(States states);
  /// Locks again what is remembered, by this process or an earlier one, and forgets it.
  void restore() { restore(askLeft()); }
  /// What an earlier process left to be locked again, on its way.
  [[nodiscard]] Asked<&xcb_get_property_reply> askLeft() {
    return connection_->askProperty(connection_->root(), property_);
  }
  void restore(Asked<&xcb_get_property_reply> left);

 private:
  struct Device {
    std::uint32_t id;
    std::uint32_t group;
    std::uint32_t modifiers;
    friend bool operator==(const Device&, const Device&) = default;
  };
  [[nodiscard]] static std::vector<Device> answers(States states);

  std::shared_ptr<Connection> connection_;
  ServerFeatures features_;
  xcb_atom_t property_ = XCB_ATOM_NONE;
  std::vector<Device> remembered_;
};

}  // namespace dormel::x11
