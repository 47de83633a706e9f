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

namespace dormel {

class KeyTracker {
 public:
  using Source = std::uint16_t;  ///< a keyboard's device id, never 0

  /// A key held already, by its keymap's code and what that means: it shows in the flags and is released in the usual
  /// way, but it does not count as pressed.
  void seed(std::uint32_t keycode, KeyCode keyCode);

  /// The event to pass on, if the press or release makes one. What is pressed as `keyCode` is released as that,
  /// whatever the keyboard's numbers mean by then.
  [[nodiscard]] std::optional<KeyEvent> press(Source source, std::uint32_t keycode, KeyCode keyCode);
  [[nodiscard]] std::optional<KeyEvent> release(Source source, std::uint32_t keycode);
  /// What is really down on a keyboard of which nothing was heard for a while, by code and meaning: the releases that
  /// were missed. Keys that have come to be held meanwhile count as seeded.
  [[nodiscard]] std::vector<KeyEvent> reconcile(Source source, const std::map<std::uint32_t, KeyCode>& down);
  /// The releases of a keyboard that went away.
  [[nodiscard]] std::vector<KeyEvent> releaseAll(Source source);

  /// Whether the key is down, seeded ones included.
  [[nodiscard]] bool isHeld(KeyCode keyCode) const { return isDown(keyCode, true); }

  /// Forgets everything.
  void clear() { held_.clear(); }

 private:
  static constexpr Source SEEDED = 0;
  [[nodiscard]] bool isDown(KeyCode keyCode, bool seededToo) const;
  [[nodiscard]] KeyEvent event(KeyCode keyCode, bool down) const;
  [[nodiscard]] EventFlags flags() const;

  std::map<std::pair<Source, std::uint32_t>, KeyCode> held_;
};

}  // namespace dormel
