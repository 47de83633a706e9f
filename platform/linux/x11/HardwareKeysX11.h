// Which keys are down, by the server's own account: XTEST's keys count, grabs do not matter.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/Keyboard.h"
#include "platform/linux/x11/Connection.h"

namespace dormel::x11 {

/// The X key codes of all keys that are down now. Asks the server.
[[nodiscard]] std::vector<std::uint8_t> keysDown(Connection& connection);

class HardwareKeysX11 : public HardwareKeys {
 public:
  explicit HardwareKeysX11(std::shared_ptr<Connection> connection) : connection_(std::move(connection)) {}
  [[nodiscard]] bool isDown(KeyCode keyCode) const override;

 private:
  std::shared_ptr<Connection> connection_;
};

}  // namespace dormel::x11
