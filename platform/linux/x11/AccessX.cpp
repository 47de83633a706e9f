#include "platform/linux/x11/AccessX.h"

#include <array>
#include <utility>
#include <vector>

namespace dormel::x11 {
namespace {

constexpr std::uint32_t AIDS =
    XCB_XKB_BOOL_CTRL_SLOW_KEYS | XCB_XKB_BOOL_CTRL_BOUNCE_KEYS | XCB_XKB_BOOL_CTRL_ACCESS_X_KEYS;

}  // namespace

AccessX::AccessX(std::shared_ptr<Connection> connection, const ServerFeatures& features)
    : connection_(std::move(connection)), features_(features) {}

AccessX::Controls AccessX::ask(const KeyDevices& devices) {
  Controls controls;
  if (!features_.xkb) return controls;
  controls.devices = devices;
  for (const std::uint16_t device : devices) {
    xcb_xkb_select_events_details_t details{};
    details.affectCtrls = details.ctrlDetails = XCB_XKB_CONTROL_CONTROLS_ENABLED;
    xcb_xkb_select_events_aux(*connection_, device, XCB_XKB_EVENT_TYPE_CONTROLS_NOTIFY, 0, 0, 0, 0, &details);
    controls.asked.emplace_back(*connection_, xcb_xkb_get_controls(*connection_, device));
  }
  return controls;
}

void AccessX::suspend(Controls controls) {
  const KeyDevices& devices = controls.devices;
  for (std::size_t i = 0; i < devices.size(); ++i) {
    const auto reply = controls.asked[i].take();
    const std::uint32_t on = reply ? reply->enabledControls & AIDS : 0;
    if (on == 0) continue;
    const std::uint32_t all = suspended_[devices[i]] |= on;
    // Before they are turned off: there is no moment at which dying would leave them so.
    resetAtTheEnd(devices[i], all, all);
    set(devices[i], on, false);
  }
  connection_->flush();
}

void AccessX::resume() {
  for (const auto& [device, aids] : std::exchange(suspended_, {})) {
    set(device, aids, true);
    resetAtTheEnd(device, aids, 0);
  }
  connection_->flush();
}

void AccessX::set(std::uint16_t device, std::uint32_t aids, bool on) {
  constexpr std::array<std::uint8_t, 32> unchanged{};
  xcb_xkb_set_controls(*connection_, device, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, aids, on ? aids : 0,
                       XCB_XKB_CONTROL_CONTROLS_ENABLED, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, unchanged.data());
}

void AccessX::resetAtTheEnd(std::uint16_t device, std::uint32_t aids, std::uint32_t on) {
  constexpr std::uint32_t RESET = XCB_XKB_PER_CLIENT_FLAG_AUTO_RESET_CONTROLS;
  const auto cookie = xcb_xkb_per_client_flags(*connection_, device, RESET, on != 0 ? RESET : 0, aids, on, on);
  xcb_discard_reply(*connection_, cookie.sequence);
}

bool AccessX::concerns(const xcb_generic_event_t& event) const {
  return features_.xkb && (event.response_type & 0x7f) == features_.xkbEvent && event.pad0 == XCB_XKB_CONTROLS_NOTIFY;
}

}  // namespace dormel::x11
