// How the server's keyboards number their keys. Main thread only.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>

#include "platform/linux/display/KeyCodes.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/Reply.h"
#include "platform/linux/x11/ServerFeatures.h"
#include "platform/linux/x11/Xkb.h"

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
  /// Asks for it, without waiting.
  void expectUsual() const;
  /// Keyboards came or went: their ids may be those of others now.
  void forget();

 private:
  void handle(const xcb_generic_event_t& event);
  using Names = Asked<&xcb_xkb_get_names_reply>;
  [[nodiscard]] Names ask(std::uint16_t device) const;
  [[nodiscard]] static KeyCodes read(Names names);

  std::shared_ptr<Connection> connection_;
  ServerFeatures features_;
  mutable std::map<std::uint16_t, KeyCodes> known_;
  mutable Names askedUsual_;
  Subscription subscription_;
};

}  // namespace dormel::x11
