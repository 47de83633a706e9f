// Virtual key codes and the X server's: the same physical positions under two numberings.
// An X key code is the kernel's code plus eight.
#pragma once

#include <xcb/xcb.h>

#include <vector>

#include "platform/Keyboard.h"

namespace dormel::x11 {

/// The position's virtual key code. Positions that have none (nothing of ours asks for them) get codes of their
/// own from 512 on.
[[nodiscard]] KeyCode virtualKeyCode(xcb_keycode_t keycode);

/// The keys that count as `keyCode`; several for right Command, none for a code that no PC keyboard has.
[[nodiscard]] std::vector<xcb_keycode_t> xKeyCodes(KeyCode keyCode);

/// Whether the key's presses and releases come as modifier changes.
[[nodiscard]] bool isModifierKey(KeyCode keyCode);

/// The flag bits that stand while this key is down: its own side's and its kind's. 0 for other keys.
[[nodiscard]] EventFlags modifierFlags(KeyCode keyCode);

}  // namespace dormel::x11
