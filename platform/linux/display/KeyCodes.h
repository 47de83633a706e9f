// Virtual key codes and an X server's: the same physical positions under two numberings. Nearly every server numbers
// them as the kernel does, plus eight; some, behind remote desktops above all, do not. What positions are called by the
// keyboard extension ("AC01" is the letter right of Caps Lock) is the same everywhere. Plain computation.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/Keyboard.h"

namespace dormel {

/// The numbering of one keyboard.
class KeyCodes {
 public:
  /// The kernel's codes plus eight.
  KeyCodes();
  /// As the names say, aliases among them. Names that this has never heard of leave the kernel's numbering.
  explicit KeyCodes(const std::map<std::string, std::uint8_t>& names);

  /// The position's virtual key code. Positions that have none (nothing of ours asks for them) get codes of their
  /// own from 512 on.
  [[nodiscard]] KeyCode virtualKeyCode(std::uint8_t keycode) const { return virtual_.at(keycode); }
  /// The keys that count as `keyCode`; several for right Command, none for a code that this keyboard has no key for.
  [[nodiscard]] std::vector<std::uint8_t> xKeyCodes(KeyCode keyCode) const;

 private:
  std::array<KeyCode, 256> virtual_{};
};

/// What the extension calls the keys that count as `keyCode`, likeliest first.
[[nodiscard]] std::vector<const char*> keyNames(KeyCode keyCode);

/// Whether the key's presses and releases come as modifier changes.
[[nodiscard]] bool isModifierKey(KeyCode keyCode);

/// The flag bits that stand while this key is down: its own side's and its kind's. 0 for other keys.
[[nodiscard]] EventFlags modifierFlags(KeyCode keyCode);

}  // namespace dormel
