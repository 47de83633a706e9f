// Aids for unsteady hands that the server itself offers: slow keys and bounce keys, and the gestures with Shift that
// turn them on. They keep a key that is down from counting as down, some for a moment and some for good, so that nobody
// could hold the keys of a challenge; and a challenge may ask to hold Shift for longer than the gesture takes. They
// rest while keys are taken. The server itself turns them on again when our connection ends. Main thread only.
#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/KeyDevices.h"
#include "platform/linux/x11/Reply.h"
#include "platform/linux/x11/ServerFeatures.h"
#include "platform/linux/x11/Xkb.h"

namespace dormel::x11 {

class AccessX {
 public:
  AccessX(std::shared_ptr<Connection> connection, const ServerFeatures& features);

  /// What `suspend` has to know of each keyboard, on its way.
  struct Controls {
    KeyDevices devices;
    std::vector<Asked<&xcb_xkb_get_controls_reply>> asked;  ///< one for each
  };
  /// Also asks for the events that `concerns` recognises.
  [[nodiscard]] Controls ask(const KeyDevices& devices);
  /// Turns off those that are on; doing it again catches what was turned on or plugged in since.
  void suspend(Controls controls);
  /// Turns on again what was turned off.
  void resume();
  /// Whether the event tells that one may have been turned on. (Keyboards that come are other news.)
  [[nodiscard]] bool concerns(const xcb_generic_event_t& event) const;

 private:
  void set(std::uint16_t device, std::uint32_t aids, bool on);
  /// What the server does with these aids when our connection ends: turn on `on` of them.
  void resetAtTheEnd(std::uint16_t device, std::uint32_t aids, std::uint32_t on);

  std::shared_ptr<Connection> connection_;
  ServerFeatures features_;
  std::map<std::uint16_t, std::uint32_t> suspended_;  ///< device, aids
};

}  // namespace dormel::x11
