#include "challenge/KeyPool.h"

#include "platform/Platform.h"
#include "platform/UnicodeText.h"

namespace dormel {
namespace {

struct ModifierBits {
  KeyCode keyCode;
  EventFlags ownSide;
  EventFlags otherSide;
  EventFlags generic;
};

constexpr std::array MODIFIER_BITS{
    ModifierBits{54, eventFlag::rightCommand, eventFlag::leftCommand, eventFlag::command},
    ModifierBits{55, eventFlag::leftCommand, eventFlag::rightCommand, eventFlag::command},
    ModifierBits{56, eventFlag::leftShift, eventFlag::rightShift, eventFlag::shift},
    ModifierBits{58, eventFlag::leftOption, eventFlag::rightOption, eventFlag::option},
    ModifierBits{59, eventFlag::leftControl, eventFlag::rightControl, eventFlag::control},
    ModifierBits{60, eventFlag::rightShift, eventFlag::leftShift, eventFlag::shift},
    ModifierBits{61, eventFlag::rightOption, eventFlag::leftOption, eventFlag::option},
    ModifierBits{62, eventFlag::rightControl, eventFlag::leftControl, eventFlag::control},
};

}  // namespace

std::optional<std::string> labelForKeyCode(KeyCode keyCode) {
  const auto produced = platform().keyboardLayout.translate(keyCode);
  if (!produced) return {};
  auto label = titleCased(*produced);
  if (!label || !isOneLetterOrNumber(*label)) return {};
  return label;
}

std::string usLabel(KeyCode keyCode) {
  std::string found;
  const auto look = [&](const auto& table, auto label) {
    for (const auto& row : table) {
      if (row.keyCode == keyCode) found = row.*label;
    }
  };
  look(LEFT_MODIFIERS, &ModifierRow::label);
  look(RIGHT_MODIFIERS, &ModifierRow::label);
  look(LEFT_LETTERS, &LetterRow::fallbackLabel);
  look(RIGHT_LETTERS, &LetterRow::fallbackLabel);
  return found;
}

std::string modifierType(KeyCode keyCode) {
  switch (keyCode) {
    case 54:
    case 55:
      return "cmd";
    case 56:
    case 60:
      return "shift";
    case 58:
    case 61:
      return "opt";
    case 59:
    case 62:
      return "ctrl";
    default:
      return "kc" + std::to_string(keyCode);
  }
}

bool isModifierPressed(KeyCode keyCode, EventFlags flags) {
  for (const ModifierBits& bits : MODIFIER_BITS) {
    if (bits.keyCode != keyCode) continue;
    if ((flags & bits.ownSide) != 0) return true;
    if ((flags & bits.otherSide) != 0) return false;
    return (flags & bits.generic) != 0;
  }
  return false;
}

}  // namespace dormel
