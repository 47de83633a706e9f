// Turns the presses and releases of several keyboards into one stream of key events: no repeats, a key that is
// down on two keyboards (or by two keys that count as one) goes down once and up once, and every event carries
// the modifiers that are down. Plain computation.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "platform/Keyboard.h"

namespace dormel::x11 {

class KeyTracker {
 public:
  using Source = std::uint16_t;  ///< a keyboard's device id, never 0

  /// A key held already, by its X key code and what that means: it shows in the flags and is released in the usual way,
  /// but it does not count as pressed.
  void seed(std::uint8_t keycode, KeyCode keyCode);

  /// The event to pass on, if the press or release makes one. What is pressed as `keyCode` is released as that,
  /// whatever the keyboard's numbers mean by then.
  [[nodiscard]] std::optional<KeyEvent> press(Source source, std::uint8_t keycode, KeyCode keyCode);
  [[nodiscard]] std::optional<KeyEvent> release(Source source, std::uint8_t keycode);
  /// The releases of a keyboard that went away.
  [[nodiscard]] std::vector<KeyEvent> releaseAll(Source source);

  /// Forgets everything.
  void clear() { held_.clear(); }

 private:
  static constexpr Source SEEDED = 0;
  [[nodiscard]] bool isDown(KeyCode keyCode, bool seededToo) const;
  [[nodiscard]] KeyEvent event(KeyCode keyCode, bool down) const;
  [[nodiscard]] EventFlags flags() const;

  std::map<std::pair<Source, std::uint8_t>, KeyCode> held_;
};

}  // namespace dormel::x11
