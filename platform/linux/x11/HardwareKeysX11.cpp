#include "platform/linux/x11/HardwareKeysX11.h"

#include <xcb/xinput.h>

#include <algorithm>

namespace dormel::x11 {
namespace {

constexpr unsigned FIRST_KEY = 8;

/// Five keys are asked for one after the other, twenty times a second: the server is asked once.
constexpr std::chrono::milliseconds SAME_MOMENT{2};

bool isSet(const std::uint8_t* bits, unsigned keycode) { return (bits[keycode / 8] >> (keycode % 8) & 1) != 0; }

bool isAnyOf(const std::vector<xcb_keycode_t>& keycodes, const std::uint8_t* bits) {
  return std::any_of(keycodes.begin(), keycodes.end(), [bits](xcb_keycode_t code) { return isSet(bits, code); });
}

}  // namespace

std::vector<std::uint8_t> keysDown(Asked<&xcb_query_keymap_reply> asked) {
  std::vector<std::uint8_t> down;
  const auto reply = asked.take();
  if (!reply) return down;
  for (unsigned keycode = FIRST_KEY; keycode < 256; ++keycode) {
    if (isSet(reply->keys, keycode)) down.push_back(static_cast<std::uint8_t>(keycode));
  }
  return down;
}

bool HardwareKeysX11::isDown(KeyCode keyCode) const {
  if (!connection_) return false;
  if (isAnyOf(numbering_.usual().xKeyCodes(keyCode), usualKeys().data())) return true;
  if (!features_.xinput22) return false;
  const auto masters = Asked<&xcb_input_xi_query_device_reply>(
                           *connection_, xcb_input_xi_query_device(*connection_, XCB_INPUT_DEVICE_ALL_MASTER))
                           .take();
  if (!masters) return false;
  std::vector<std::uint16_t> keyboards;
  for (auto it = xcb_input_xi_query_device_infos_iterator(masters.get()); it.rem > 0;
       xcb_input_xi_device_info_next(&it)) {
    if (it.data->type == XCB_INPUT_DEVICE_TYPE_MASTER_KEYBOARD) keyboards.push_back(it.data->deviceid);
  }
  // One keyboard is the usual one.
  return keyboards.size() > 1 && std::any_of(keyboards.begin(), keyboards.end(), [&](std::uint16_t keyboard) {
           return isDownElsewhere(keyCode, keyboard);
         });
}

const HardwareKeysX11::Bits& HardwareKeysX11::usualKeys() const {
  const auto now = std::chrono::steady_clock::now();
  if (askedAt_ && now - *askedAt_ < SAME_MOMENT) return usualKeys_;
  askedAt_ = now;
  usualKeys_.fill(0);
  const auto reply = Asked<&xcb_query_keymap_reply>(*connection_, xcb_query_keymap(*connection_)).take();
  if (reply) std::copy(std::begin(reply->keys), std::end(reply->keys), usualKeys_.begin());
  return usualKeys_;
}

bool HardwareKeysX11::isDownElsewhere(KeyCode keyCode, std::uint16_t keyboard) const {
  Connection& c = *connection_;
  const auto cookie = xcb_input_query_device_state(c, static_cast<std::uint8_t>(keyboard));
  const auto state = owned(xcb_input_query_device_state_reply(c, cookie, nullptr));
  if (!state) return false;
  for (auto it = xcb_input_query_device_state_classes_iterator(state.get()); it.rem > 0;
       xcb_input_input_state_next(&it)) {
    if (it.data->class_id != XCB_INPUT_INPUT_CLASS_KEY) continue;
    const auto& keys = reinterpret_cast<const xcb_input_key_state_t&>(*it.data);
    if (isAnyOf(numbering_.of(keyboard).xKeyCodes(keyCode), keys.keys)) return true;
  }
  return false;
}

}  // namespace dormel::x11
