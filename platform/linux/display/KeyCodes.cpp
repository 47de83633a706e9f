#include "platform/linux/display/KeyCodes.h"

#include <algorithm>
#include <array>

namespace dormel {
namespace {

constexpr int EVDEV_OFFSET = 8;
constexpr KeyCode OTHER_KEYS = 512;

struct Row {
  KeyCode keyCode;
  std::uint8_t evdev;
  const char* name;
  const char* otherName = nullptr;
};

// Few PC keyboards have a right Super key: Menu and right Control count as right Command as well. The last 22 are in no
// challenge, but may share a label with a key that one asks for.
constexpr std::array ROWS{
    Row{0, 30, "AC01"},           Row{1, 31, "AC02"},           Row{2, 32, "AC03"},    Row{3, 33, "AC04"},
    Row{4, 35, "AC06"},           Row{5, 34, "AC05"},           Row{6, 44, "AB01"},    Row{7, 45, "AB02"},
    Row{8, 46, "AB03"},           Row{9, 47, "AB04"},           Row{11, 48, "AB05"},   Row{12, 16, "AD01"},
    Row{13, 17, "AD02"},          Row{14, 18, "AD03"},          Row{15, 19, "AD04"},   Row{16, 21, "AD06"},
    Row{17, 20, "AD05"},          Row{31, 24, "AD09"},          Row{32, 22, "AD07"},   Row{34, 23, "AD08"},
    Row{35, 25, "AD10"},          Row{37, 38, "AC09"},          Row{38, 36, "AC07"},   Row{40, 37, "AC08"},
    Row{45, 49, "AB06"},          Row{46, 50, "AB07"},          Row{49, 57, "SPCE"},   Row{53, 1, "ESC"},
    Row{54, 126, "RWIN", "RMTA"}, Row{54, 127, "COMP", "MENU"}, Row{54, 97, "RCTL"},   Row{55, 125, "LWIN", "LMTA"},
    Row{56, 42, "LFSH"},          Row{57, 58, "CAPS"},          Row{58, 56, "LALT"},   Row{59, 29, "LCTL"},
    Row{60, 54, "RTSH"},          Row{61, 100, "RALT", "ALGR"}, Row{125, 108, "DOWN"}, Row{126, 103, "UP"},
    Row{18, 2, "AE01"},           Row{19, 3, "AE02"},           Row{20, 4, "AE03"},    Row{21, 5, "AE04"},
    Row{23, 6, "AE05"},           Row{22, 7, "AE06"},           Row{26, 8, "AE07"},    Row{28, 9, "AE08"},
    Row{25, 10, "AE09"},          Row{29, 11, "AE10"},          Row{27, 12, "AE11"},   Row{24, 13, "AE12"},
    Row{33, 26, "AD11"},          Row{30, 27, "AD12"},          Row{41, 39, "AC10"},   Row{39, 40, "AC11"},
    Row{42, 43, "BKSL", "AC12"},  Row{43, 51, "AB08"},          Row{47, 52, "AB09"},   Row{44, 53, "AB10"},
    Row{50, 41, "TLDE"},          Row{10, 86, "LSGT"},
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

KeyCodes::KeyCodes() {
  for (std::size_t code = 0; code < virtual_.size(); ++code) virtual_[code] = static_cast<KeyCode>(OTHER_KEYS + code);
  for (const Row& row : ROWS) virtual_.at(row.evdev + EVDEV_OFFSET) = row.keyCode;
}

KeyCodes::KeyCodes(const std::map<std::string, std::uint8_t>& names) : KeyCodes() {
  std::array<KeyCode, 256> named{};
  for (std::size_t code = 0; code < named.size(); ++code) named[code] = static_cast<KeyCode>(OTHER_KEYS + code);
  bool isKnown = false;
  for (const Row& row : ROWS) {
    for (const char* name : {row.name, row.otherName}) {
      const auto key = name == nullptr ? names.end() : names.find(name);
      if (key == names.end()) continue;
      named.at(key->second) = row.keyCode;
      isKnown = true;
    }
  }
  if (isKnown) virtual_ = named;
}

std::vector<std::uint8_t> KeyCodes::xKeyCodes(KeyCode keyCode) const {
  std::vector<std::uint8_t> codes;
  for (std::size_t code = 0; code < virtual_.size(); ++code) {
    if (virtual_[code] == keyCode) codes.push_back(static_cast<std::uint8_t>(code));
  }
  return codes;
}

std::vector<const char*> keyNames(KeyCode keyCode) {
  std::vector<const char*> names;
  for (const Row& row : ROWS) {
    if (row.keyCode != keyCode) continue;
    names.push_back(row.name);
    if (row.otherName != nullptr) names.push_back(row.otherName);
  }
  return names;
}

bool isModifierKey(KeyCode keyCode) { return findModifier(keyCode) != nullptr; }

EventFlags modifierFlags(KeyCode keyCode) {
  const auto* modifier = findModifier(keyCode);
  return modifier != nullptr ? modifier->bits : 0;
}

}  // namespace dormel
