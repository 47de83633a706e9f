// Which keys are down, by the server's own account: XTEST's keys count, grabs do not matter.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "platform/Keyboard.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/KeyNumbering.h"
#include "platform/linux/x11/Reply.h"
#include "platform/linux/x11/ServerFeatures.h"

namespace dormel::x11 {

/// The X key codes of all keys of the usual keyboard that were down when the server was asked.
[[nodiscard]] std::vector<std::uint8_t> keysDown(Asked<&xcb_query_keymap_reply> asked);

class HardwareKeysX11 : public HardwareKeys {
 public:
  /// `numbering` of the same connection outlives it.
  HardwareKeysX11(std::shared_ptr<Connection> connection, const ServerFeatures& features, const KeyNumbering& numbering)
      : connection_(std::move(connection)), features_(features), numbering_(numbering) {}
  /// On any keyboard: a server can have several that are independent of each other.
  [[nodiscard]] bool isDown(KeyCode keyCode) const override;

 private:
  using Bits = std::array<std::uint8_t, 32>;  ///< by key code

  [[nodiscard]] const Bits& usualKeys() const;
  [[nodiscard]] bool isDownElsewhere(KeyCode keyCode, std::uint16_t keyboard) const;

  std::shared_ptr<Connection> connection_;
  ServerFeatures features_;
  const KeyNumbering& numbering_;
  mutable std::optional<std::chrono::steady_clock::time_point> askedAt_;
  mutable Bits usualKeys_{};
};

}  // namespace dormel::x11
