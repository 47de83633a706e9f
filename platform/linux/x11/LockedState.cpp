#include "platform/linux/x11/LockedState.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/linux/x11/Reply.h"
#include "platform/linux/x11/ServerHotkeys.h"
#include "platform/linux/x11/Xkb.h"

namespace dormel::x11 {
namespace {

constexpr std::uint8_t ALL_MODIFIERS = 0xff;

}  // namespace

LockedState::LockedState(std::shared_ptr<Connection> connection, const ServerFeatures& features)
    : connection_(std::move(connection)), features_(features), property_(connection_->atom("_DORMEL_LOCKED_STATE")) {}

std::vector<LockedState::Device> LockedState::query() {
  const auto ids = keyDevices(*connection_, features_);
  std::vector<xcb_xkb_get_state_cookie_t> cookies;
  cookies.reserve(ids.size());
  for (const std::uint16_t id : ids) cookies.push_back(xcb_xkb_get_state(*connection_, id));
  std::vector<Device> devices;
  for (std::size_t i = 0; i < ids.size(); ++i) {
    const auto reply = owned(xcb_xkb_get_state_reply(*connection_, cookies[i], nullptr));
    if (reply) devices.push_back({ids[i], reply->lockedGroup, reply->lockedMods});
  }
  return devices;
}

void LockedState::remember() {
  if (!features_.xkb) return;
  remembered_ = query();
  static_assert(sizeof(Device) == 12);
  xcb_change_property(*connection_, XCB_PROP_MODE_REPLACE, connection_->root(), property_, XCB_ATOM_CARDINAL, 32,
                      static_cast<std::uint32_t>(remembered_.size() * sizeof(Device) / 4), remembered_.data());
  connection_->flush();
}

void LockedState::restore() {
  if (!features_.xkb) return;
  std::vector<Device> wanted = std::exchange(remembered_, {});
  if (wanted.empty()) {
    const auto words = connection_->property32(connection_->root(), property_);
    if (words.empty() || words.size() * 4 % sizeof(Device) != 0) return;
    wanted.resize(words.size() * 4 / sizeof(Device));
    std::memcpy(wanted.data(), words.data(), words.size() * 4);
  }
  // One that is as it was is left alone. A master keyboard passes its state on to those that belong to it, so what
  // these have now counts only once it was told.
  for (int round = 0; round < 2; ++round) {
    const auto present = query();
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
