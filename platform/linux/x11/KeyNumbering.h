// How the server's keyboards number their keys. Main thread only.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>

#include "platform/linux/display/KeyCodes.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/ServerFeatures.h"

namespace dormel::x11 {

class KeyNumbering {
 public:
  /// `connection` may be null; only its keyboard extension matters of the features. Without it, keys are numbered as
  /// the kernel does.
  KeyNumbering(std::shared_ptr<Connection> connection, const ServerFeatures& features);

  /// Asks the server for each device once, and again when its keys may have got other numbers. A device that has no
  /// keys must not be named.
  [[nodiscard]] const KeyCodes& of(std::uint16_t device) const;
  /// Of the usual keyboard.
  [[nodiscard]] const KeyCodes& usual() const;
  /// Keyboards came or went: their ids may be those of others now.
  void forget();

 private:
  void handle(const xcb_generic_event_t& event);
  [[nodiscard]] KeyCodes query(std::uint16_t device) const;

  std::shared_ptr<Connection> connection_;
  ServerFeatures features_;
  mutable std::map<std::uint16_t, KeyCodes> known_;
  Subscription subscription_;
};

}  // namespace dormel::x11
