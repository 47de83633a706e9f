// What the server's current keyboard layout prints on the keys.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/Keyboard.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/KeyNumbering.h"
#include "platform/linux/x11/ServerFeatures.h"

namespace dormel::x11 {

class LayoutX11 : public KeyboardLayout {
 public:
  /// `numbering` of the same connection outlives it.
  LayoutX11(std::shared_ptr<Connection> connection, const ServerFeatures& features, const KeyNumbering& numbering);

  [[nodiscard]] std::optional<std::string> translate(KeyCode keyCode) const override;
  [[nodiscard]] std::string printedLegend(KeyCode keyCode) const override;

 private:
  void handle(const xcb_generic_event_t& event);
  void fetch() const;

  std::shared_ptr<Connection> connection_;
  ServerFeatures features_;
  const KeyNumbering& numbering_;
  /// Each key's symbol without modifiers, by the server's number of the key, in the layout that is in force; dropped
  /// when either changes.
  mutable std::optional<std::array<std::uint32_t, 256>> symbols_;
  Subscription subscription_;
};

}  // namespace dormel::x11
