#include "platform/linux/x11/KeyCodes.h"

#include <algorithm>
#include <array>

namespace dormel::x11 {
namespace {

constexpr int EVDEV_OFFSET = 8;
constexpr KeyCode OTHER_KEYS = 512;

struct Row {
  KeyCode keyCode;
  std::uint8_t evdev;
};

// Few PC keyboards have a right Super key: Menu (127) and right Control (97) count as right Command as well. The last
// 22 are in no challenge, but may share a label with a key that one asks for.
constexpr std::array ROWS{
    Row{0, 30},  Row{1, 31},  Row{2, 32},  Row{3, 33},  Row{4, 35},   Row{5, 34},   Row{6, 44},    Row{7, 45},
    Row{8, 46},  Row{9, 47},  Row{11, 48}, Row{12, 16}, Row{13, 17},  Row{14, 18},  Row{15, 19},   Row{16, 21},
    Row{17, 20}, Row{31, 24}, Row{32, 22}, Row{34, 23}, Row{35, 25},  Row{37, 38},  Row{38, 36},   Row{40, 37},
    Row{45, 49}, Row{46, 50}, Row{49, 57}, Row{53, 1},  Row{54, 126}, Row{54, 127}, Row{54, 97},   Row{55, 125},
    Row{56, 42}, Row{57, 58}, Row{58, 56}, Row{59, 29}, Row{60, 54},  Row{61, 100}, Row{125, 108}, Row{126, 103},
    Row{18, 2},  Row{19, 3},  Row{20, 4},  Row{21, 5},  Row{23, 6},   Row{22, 7},   Row{26, 8},    Row{28, 9},
    Row{25, 10}, Row{29, 11}, Row{27, 12}, Row{24, 13}, Row{33, 26},  Row{30, 27},  Row{41, 39},   Row{39, 40},
    Row{42, 43}, Row{43, 51}, Row{47, 52}, Row{44, 53}, Row{50, 41},  Row{10, 86},
};

struct ModifierBits {
  KeyCode keyCode;
  EventFlags bits;
};

constexpr EventFlags SHIFT = 0x20000;
constexpr EventFlags CONTROL = 0x40000;
constexpr EventFlags OPTION = 0x80000;
constexpr EventFlags COMMAND = 0x100000;

constexpr std::array MODIFIERS{
    ModifierBits{54, COMMAND | 0x10}, ModifierBits{55, COMMAND | 0x08},
    ModifierBits{56, SHIFT | 0x02},   ModifierBits{57, 0},
    ModifierBits{58, OPTION | 0x20},  ModifierBits{59, CONTROL | 0x01},
    ModifierBits{60, SHIFT | 0x04},   ModifierBits{61, OPTION | 0x40},
};

const ModifierBits* findModifier(KeyCode keyCode) {
  const auto* const at =
      std::find_if(MODIFIERS.begin(), MODIFIERS.end(), [&](const ModifierBits& m) { return m.keyCode == keyCode; });
  return at == MODIFIERS.end() ? nullptr : at;
}

}  // namespace

KeyCode virtualKeyCode(xcb_keycode_t keycode) {
  const int evdev = keycode - EVDEV_OFFSET;
  const auto* const at = std::find_if(ROWS.begin(), ROWS.end(), [&](const Row& row) { return row.evdev == evdev; });
  return at == ROWS.end() ? static_cast<KeyCode>(OTHER_KEYS + keycode) : at->keyCode;
}

std::vector<xcb_keycode_t> xKeyCodes(KeyCode keyCode) {
  std::vector<xcb_keycode_t> codes;
  for (const Row& row : ROWS) {
    if (row.keyCode == keyCode) codes.push_back(static_cast<xcb_keycode_t>(row.evdev + EVDEV_OFFSET));
  }
  return codes;
}

bool isModifierKey(KeyCode keyCode) { return findModifier(keyCode) != nullptr; }

EventFlags modifierFlags(KeyCode keyCode) {
  const auto* modifier = findModifier(keyCode);
  return modifier != nullptr ? modifier->bits : 0;
}

}  // namespace dormel::x11
