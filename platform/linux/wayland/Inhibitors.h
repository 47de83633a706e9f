// Keeps the compositor's own shortcuts from acting while one of our surfaces has the keyboard. Main thread only.
#pragma once

#include <map>
#include <utility>

#include "platform/linux/wayland/Keyboard.h"

namespace dormel::wayland {

class Inhibitors {
 public:
  Inhibitors(Connection& connection, const Keyboard& keyboard) : connection_(connection), keyboard_(keyboard) {}

  void add(wl_surface* surface);
  void remove(wl_surface* surface);
  /// For the seats that there are now.
  void seatsChanged();

 private:
  Connection& connection_;
  const Keyboard& keyboard_;
  std::map<wl_surface*, std::map<wl_seat*, Owned<zwp_keyboard_shortcuts_inhibitor_v1>>> inhibitors_;
};

}  // namespace dormel::wayland
