// The pointers of all seats: hidden and kept over black panels, and told to the panel that they are over.
// Main thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <map>

#include "platform/linux/wayland/Connection.h"

struct wl_pointer_listener;

namespace dormel::wayland {

class Pointer {
 public:
  /// What a panel wants to hear; places in points from its surface's top left corner.
  struct Target {
    bool isHidden = false;
    std::function<void(double x, double y)> onMove;
    std::function<void(double x, double y, bool isPress)> onButton;  ///< the main one
    Task onLeave;
  };

  explicit Pointer(Connection& connection) : connection_(connection) {}

  /// A seat that has a pointer, or has it no more.
  void offered(wl_seat* seat, bool hasPointer);
  void forget(wl_seat* seat) { offered(seat, false); }

  void add(wl_surface* surface, Target target);
  void remove(wl_surface* surface);

  /// Keeps each pointer where it is while it is over a hidden target, so that no edge of a screen answers to it.
  /// A compositor may do so only while that surface has the keyboard.
  void setKept(bool kept);

 private:
  struct Hand {
    Pointer* owner = nullptr;
    wl_seat* seat = nullptr;
    Owned<wl_pointer> pointer;
    wl_surface* over = nullptr;
    double x = 0;
    double y = 0;
    std::map<wl_surface*, Owned<zwp_locked_pointer_v1>> locks;

    static constexpr wl_pointer_listener listener();
  };

  Target* targetOf(const Hand& hand);
  void keep(Hand& hand);

  Connection& connection_;
  std::list<Hand> hands_;
  std::map<wl_surface*, Target> targets_;
  bool isKept_ = false;
};

}  // namespace dormel::wayland
