#include "platform/linux/x11/XkbLockState.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace dormel::x11 {
namespace {

constexpr std::uint8_t ALL_MODIFIERS = 0xff;

}  // namespace

XkbLockState::XkbLockState(std::shared_ptr<Connection> connection, const ServerFeatures& features)
    : connection_(std::move(connection)), features_(features), property_(connection_->atom("_DORMEL_LOCKED_STATE")) {}

XkbLockState::States XkbLockState::ask(const KeyDevices& devices) {
  States states;
  if (!features_.xkb) return states;
  states.devices = devices;
  for (const std::uint16_t device : devices) {
    states.asked.emplace_back(*connection_, xcb_xkb_get_state(*connection_, device));
  }
  return states;
}

std::vector<XkbLockState::Device> XkbLockState::answers(States states) {
  std::vector<Device> devices;
  for (std::size_t i = 0; i < states.devices.size(); ++i) {
    const auto reply = states.asked[i].take();
    if (reply) devices.push_back({states.devices[i], reply->lockedGroup, reply->lockedMods});
  }
  return devices;
}

void XkbLockState::remember(States states) {
  if (!features_.xkb) return;
  remembered_ = answers(std::move(states));
  static_assert(sizeof(Device) == 12);
  xcb_change_property(*connection_, XCB_PROP_MODE_REPLACE, connection_->root(), property_, XCB_ATOM_CARDINAL, 32,
                      static_cast<std::uint32_t>(remembered_.size() * sizeof(Device) / 4), remembered_.data());
  connection_->flush();
}

void XkbLockState::restore(Asked<&xcb_get_property_reply> left) {
  if (!features_.xkb) return;
  std::vector<Device> wanted = std::exchange(remembered_, {});
  if (wanted.empty()) {
    const auto words = Connection::items(std::move(left));
    if (words.empty() || words.size() * 4 % sizeof(Device) != 0) return;
    wanted.resize(words.size() * 4 / sizeof(Device));
    std::memcpy(wanted.data(), words.data(), words.size() * 4);
  }
  // One that is as it was is left alone. A master keyboard passes its state on to those that belong to it, so what
  // these have now counts only once it was told.
  for (int round = 0; round < 2; ++round) {
    const auto present = answers(ask(keyDevices(*connection_, features_)));
    for (const Device& device : wanted) {
      const auto now = std::find_if(present.begin(), present.end(), [&](const Device& d) { return d.id == device.id; });
      if (now == present.end() || *now == device) continue;
      xcb_xkb_latch_lock_state(*connection_, static_cast<xcb_xkb_device_spec_t>(device.id), ALL_MODIFIERS,
                               static_cast<std::uint8_t>(device.modifiers), 1, static_cast<std::uint8_t>(device.group),
                               0, 0, 0);
    }
  }
  xcb_delete_property(*connection_, connection_->root(), property_);
  connection_->sync();
}

}  // namespace dormel::x11
