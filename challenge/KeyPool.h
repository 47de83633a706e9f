// The keys a challenge can ask for: the fixed tables of physical keys, their labels, and how a modifier's state is
// read from an event's flag word.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Keyboard.h"

namespace dormel {

/// One candidate key.
struct KeyPool {
  std::string label;  ///< shown to the user: "A", "L.Shift"
  KeyCode keyCode = 0;
  bool isModifier = false;
};

/// One key that the current challenge requires. The physical key is its identity: labels do not compare.
struct RequiredKey {
  std::string label;
  KeyCode keyCode = 0;
  bool isModifier = false;
  friend bool operator==(const RequiredKey& a, const RequiredKey& b) { return a.keyCode == b.keyCode; }
};

/// A modifier row of the tables: its label never comes from the layout.
struct ModifierRow {
  const char* label;
  KeyCode keyCode;
};

/// A letter row: where the key is, and its legend on a US keyboard.
struct LetterRow {
  KeyCode keyCode;
  const char* fallbackLabel;
};

inline constexpr std::array LEFT_MODIFIERS{ModifierRow{"L.Shift", 56}, ModifierRow{"L.Ctrl", 59},
                                           ModifierRow{"L.Option", 58}, ModifierRow{"L.Cmd", 55}};

// Few keyboards have a right Control key worth asking for.
inline constexpr std::array RIGHT_MODIFIERS{ModifierRow{"R.Shift", 60}, ModifierRow{"R.Option", 61},
                                            ModifierRow{"R.Cmd", 54}};

// The split is the touch typist's: T, G and B belong to the left hand, Y, H and N to the right.
inline constexpr std::array LEFT_LETTERS{LetterRow{0, "A"},  LetterRow{1, "S"},  LetterRow{2, "D"},  LetterRow{3, "F"},
                                         LetterRow{5, "G"},  LetterRow{12, "Q"}, LetterRow{13, "W"}, LetterRow{14, "E"},
                                         LetterRow{15, "R"}, LetterRow{17, "T"}, LetterRow{6, "Z"},  LetterRow{7, "X"},
                                         LetterRow{8, "C"},  LetterRow{9, "V"},  LetterRow{11, "B"}};

inline constexpr std::array RIGHT_LETTERS{LetterRow{4, "H"},  LetterRow{38, "J"}, LetterRow{40, "K"},
                                          LetterRow{37, "L"}, LetterRow{32, "U"}, LetterRow{34, "I"},
                                          LetterRow{31, "O"}, LetterRow{35, "P"}, LetterRow{45, "N"},
                                          LetterRow{46, "M"}, LetterRow{16, "Y"}};

namespace keyCode {
inline constexpr KeyCode space = 49;
inline constexpr KeyCode escape = 53;
}  // namespace keyCode

/// Bits of an event's flag word. The first eight tell the side; a source that reports no sides sets only the
/// generic ones.
namespace eventFlag {
inline constexpr EventFlags leftControl = 0x1;
inline constexpr EventFlags leftShift = 0x2;
inline constexpr EventFlags rightShift = 0x4;
inline constexpr EventFlags leftCommand = 0x8;
inline constexpr EventFlags rightCommand = 0x10;
inline constexpr EventFlags leftOption = 0x20;
inline constexpr EventFlags rightOption = 0x40;
inline constexpr EventFlags rightControl = 0x2000;
inline constexpr EventFlags shift = 0x20000;
inline constexpr EventFlags control = 0x40000;
inline constexpr EventFlags option = 0x80000;
inline constexpr EventFlags command = 0x100000;
}  // namespace eventFlag

/// The character that the current layout produces for the key, as keyboards print it (in title case), when it is one
/// letter or digit.
[[nodiscard]] std::optional<std::string> labelForKeyCode(KeyCode keyCode);

/// The key's name on a US keyboard, a modifier's label included: readable whatever the layout's alphabet is. Empty for
/// a key that no challenge asks for.
[[nodiscard]] std::string usLabel(KeyCode keyCode);

/// "cmd", "shift", "opt" or "ctrl" for either side's key; "kc" and the code for any other.
[[nodiscard]] std::string modifierType(KeyCode keyCode);

/// Whether the modifier is down by the flags of a modifier event: its own side's bit decides; failing that the
/// other side's bit means the other key; failing both, the generic bit. False for any key that is no modifier.
[[nodiscard]] bool isModifierPressed(KeyCode keyCode, EventFlags flags);

}  // namespace dormel
