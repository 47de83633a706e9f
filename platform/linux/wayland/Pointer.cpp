#include "platform/linux/wayland/Pointer.h"

#include <linux/input-event-codes.h>

#include <algorithm>
#include <utility>

#include "platform/linux/wayland/Protocols.h"

namespace dormel::wayland {

namespace {

/// Events that only newer versions of the protocol have, which a compositor must not send to us. libwayland ends the
/// process when one comes that nobody listens to. (Templates: an older library's struct has fewer of them.)
template <typename Listener>
constexpr void hearNewerEvents(Listener& listener) {
  if constexpr (requires { listener.axis_value120; }) {
    listener.axis_value120 = [](void*, wl_pointer*, std::uint32_t, std::int32_t) {};
  }
  if constexpr (requires { listener.axis_relative_direction; }) {
    listener.axis_relative_direction = [](void*, wl_pointer*, std::uint32_t, std::uint32_t) {};
  }
}

}  // namespace

constexpr wl_pointer_listener Pointer::Hand::listener() {
  wl_pointer_listener listener{};
  listener.enter = [](void* data, wl_pointer* pointer, std::uint32_t serial, wl_surface* surface, wl_fixed_t x,
                      wl_fixed_t y) {
    auto& hand = *static_cast<Hand*>(data);
    hand.over = surface;
    hand.x = wl_fixed_to_double(x);
    hand.y = wl_fixed_to_double(y);
    const Target* target = hand.owner->targetOf(hand);
    if (target == nullptr) return;
    if (target->isHidden) wl_pointer_set_cursor(pointer, serial, nullptr, 0, 0);
    if (const auto onMove = target->onMove) onMove(hand.x, hand.y);
  };
  listener.leave = [](void* data, wl_pointer*, std::uint32_t, wl_surface*) {
    auto& hand = *static_cast<Hand*>(data);
    const Target* target = hand.owner->targetOf(hand);
    const Task onLeave = target != nullptr ? target->onLeave : Task();
    hand.over = nullptr;
    if (onLeave) onLeave();
  };
  listener.motion = [](void* data, wl_pointer*, std::uint32_t, wl_fixed_t x, wl_fixed_t y) {
    auto& hand = *static_cast<Hand*>(data);
    hand.x = wl_fixed_to_double(x);
    hand.y = wl_fixed_to_double(y);
    const Target* target = hand.owner->targetOf(hand);
    if (target == nullptr) return;
    if (const auto onMove = target->onMove) onMove(hand.x, hand.y);
  };
  listener.button = [](void* data, wl_pointer*, std::uint32_t, std::uint32_t, std::uint32_t button,
                       std::uint32_t state) {
    auto& hand = *static_cast<Hand*>(data);
    const Target* target = hand.owner->targetOf(hand);
    if (target == nullptr || button != BTN_LEFT) return;
    if (const auto onButton = target->onButton) onButton(hand.x, hand.y, state == WL_POINTER_BUTTON_STATE_PRESSED);
  };
  listener.axis = [](void*, wl_pointer*, std::uint32_t, std::uint32_t, wl_fixed_t) {};
  listener.frame = [](void*, wl_pointer*) {};
  listener.axis_source = [](void*, wl_pointer*, std::uint32_t) {};
  listener.axis_stop = [](void*, wl_pointer*, std::uint32_t, std::uint32_t) {};
  listener.axis_discrete = [](void*, wl_pointer*, std::uint32_t, std::int32_t) {};
  hearNewerEvents(listener);
  return listener;
}

void Pointer::offered(wl_seat* seat, bool hasPointer) {
  const auto found = std::find_if(hands_.begin(), hands_.end(), [&](const Hand& hand) { return hand.seat == seat; });
  if (!hasPointer) {
    if (found != hands_.end()) hands_.erase(found);
    return;
  }
  if (found != hands_.end()) return;
  Hand& hand = hands_.emplace_back();
  hand.owner = this;
  hand.seat = seat;
  hand.pointer.reset(wl_seat_get_pointer(seat));
  static constexpr wl_pointer_listener LISTENER = Hand::listener();
  wl_pointer_add_listener(hand.pointer.get(), &LISTENER, &hand);
  keep(hand);
}

Pointer::Target* Pointer::targetOf(const Hand& hand) {
  const auto found = targets_.find(hand.over);
  return found == targets_.end() ? nullptr : &found->second;
}

void Pointer::add(wl_surface* surface, Target target) {
  targets_[surface] = std::move(target);
  for (Hand& hand : hands_) keep(hand);
}

void Pointer::remove(wl_surface* surface) {
  targets_.erase(surface);
  for (Hand& hand : hands_) {
    hand.locks.erase(surface);
    if (hand.over == surface) hand.over = nullptr;
  }
}

void Pointer::setKept(bool kept) {
  isKept_ = kept;
  for (Hand& hand : hands_) keep(hand);
}

void Pointer::keep(Hand& hand) {
  if (!connection_.globals().pointerConstraints) return;
  if (!isKept_) return hand.locks.clear();
  for (const auto& [surface, target] : targets_) {
    if (!target.isHidden || hand.locks.contains(surface)) continue;
    hand.locks[surface].reset(zwp_pointer_constraints_v1_lock_pointer(connection_.globals().pointerConstraints.get(),
                                                                      surface, hand.pointer.get(), nullptr,
                                                                      ZWP_POINTER_CONSTRAINTS_V1_LIFETIME_PERSISTENT));
  }
}

}  // namespace dormel::wayland
