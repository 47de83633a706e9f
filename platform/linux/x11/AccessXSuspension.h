// Holds off what the server does with keys on its own account, as long as somebody's keys are taken: the typing aids
// rest (nobody could hold the keys of a challenge), and the locked group and modifiers are as before at the end,
// whatever was pressed meanwhile. A lockdown wants this and so does every tap, in a rehearsal as at night.
// Main thread only, but for `isHeld`.
#pragma once

#include <atomic>
#include <memory>

#include "platform/linux/display/CoalescedTimer.h"
#include "platform/linux/x11/AccessX.h"
#include "platform/linux/x11/XkbLockState.h"

namespace dormel::x11 {

class AccessXSuspension : public std::enable_shared_from_this<AccessXSuspension> {
 public:
  [[nodiscard]] static std::shared_ptr<AccessXSuspension> create(const std::shared_ptr<Connection>& connection,
                                                                 const ServerFeatures& features);

  /// It is on from the first of these that is taken until the last one is let go.
  using Hold = std::shared_ptr<const void>;
  [[nodiscard]] Hold hold();
  /// The same for somebody who has just asked for the devices, and hears of those that come and go.
  [[nodiscard]] Hold hold(const KeyDevices& devices);
  /// Any thread.
  [[nodiscard]] bool isHeld() const { return isHeld_; }

  /// Puts back the locked state that a process which died while it was on left behind.
  void repair(Asked<&xcb_get_property_reply> left) { locked_.restore(std::move(left)); }
  [[nodiscard]] Asked<&xcb_get_property_reply> askLeft() { return locked_.askLeft(); }

 private:
  AccessXSuspension(std::shared_ptr<Connection> connection, const ServerFeatures& features);
  void begin(const KeyDevices& devices);
  void end();
  void handle(const xcb_generic_event_t& event);

  std::shared_ptr<Connection> connection_;
  ServerFeatures features_;
  AccessX aids_;
  XkbLockState locked_;
  std::weak_ptr<const void> held_;
  std::atomic<bool> isHeld_ = false;
  Subscription subscription_;
  CoalescedTimer check_;
};

}  // namespace dormel::x11
