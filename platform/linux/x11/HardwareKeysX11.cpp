#include "platform/linux/x11/HardwareKeysX11.h"

#include <algorithm>

#include "platform/linux/x11/KeyCodes.h"
#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {

std::vector<std::uint8_t> keysDown(Connection& connection) {
  std::vector<std::uint8_t> down;
  const auto reply = owned(xcb_query_keymap_reply(connection, xcb_query_keymap(connection), nullptr));
  if (!reply) return down;
  for (unsigned keycode = 8; keycode < 256; ++keycode) {
    if ((reply->keys[keycode / 8] >> (keycode % 8) & 1) != 0) down.push_back(static_cast<std::uint8_t>(keycode));
  }
  return down;
}

bool HardwareKeysX11::isDown(KeyCode keyCode) const {
  if (!connection_) return false;
  const auto down = keysDown(*connection_);
  const auto candidates = xKeyCodes(keyCode);
  return std::any_of(candidates.begin(), candidates.end(),
                     [&](xcb_keycode_t code) { return std::binary_search(down.begin(), down.end(), code); });
}

}  // namespace dormel::x11
