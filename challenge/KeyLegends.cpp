#include "challenge/KeyLegends.h"

#include <algorithm>
#include <array>
#include <optional>

#include "challenge/KeyPool.h"
#include "platform/Platform.h"
#include "platform/Texts.h"
#include "platform/UnicodeText.h"

namespace dormel {
namespace {

// The letters of the tables as they lie on the desk.
constexpr std::array<KeyCode, 10> ROW_1{12, 13, 14, 15, 17, 16, 32, 34, 31, 35};
constexpr std::array<KeyCode, 9> ROW_2{0, 1, 2, 3, 5, 4, 38, 40, 37};
constexpr std::array<KeyCode, 7> ROW_3{6, 7, 8, 9, 11, 45, 46};

// All other keys that type a character: digits, punctuation, and the key that only some keyboards have beside left
// Shift.
constexpr std::array<KeyCode, 22> OTHER_KEYS{18, 19, 20, 21, 23, 22, 26, 28, 25, 29, 27,
                                             24, 33, 30, 41, 39, 42, 43, 47, 44, 50, 10};

struct TypingKey {
  KeyCode keyCode = 0;
  std::string label;                   // what a reader of labels takes it for; empty when for nothing
  std::optional<std::string> printed;  // when that can be seen
  bool isDrawn = false;                // the challenge may ask for it
  bool isStandIn = false;              // its label is the US legend
};

std::optional<std::string> visible(std::optional<std::string> produced) {
  return produced && isOneVisibleCharacter(*produced) ? std::move(produced) : std::nullopt;
}

std::vector<TypingKey> typingKeys() {
  std::vector<TypingKey> keys;
  const auto add = [&keys](KeyCode keyCode, const char* fallback) {
    const auto own = labelForKeyCode(keyCode);
    keys.push_back({keyCode, own.value_or(fallback), visible(platform().keyboardLayout.translate(keyCode)),
                    *fallback != '\0', !own});
  };
  for (const LetterRow& row : LEFT_LETTERS) add(row.keyCode, row.fallbackLabel);
  for (const LetterRow& row : RIGHT_LETTERS) add(row.keyCode, row.fallbackLabel);
  for (const KeyCode keyCode : OTHER_KEYS) add(keyCode, "");
  return keys;
}

template <typename Row>
std::string placeIn(const Row& row, int number, KeyCode keyCode) {
  const auto at = std::find(row.begin(), row.end(), keyCode);
  if (at == row.end()) return {};
  constexpr std::array PLACES{translatable("row %1, %2st"), translatable("row %1, %2nd"), translatable("row %1, %2rd"),
                              translatable("row %1, %2th")};
  const auto before = static_cast<std::size_t>(at - row.begin());
  return translate(PLACES.at(std::min(before, PLACES.size() - 1)),
                   {std::to_string(number), std::to_string(before + 1)});
}

std::string place(KeyCode keyCode) {
  return placeIn(ROW_1, 1, keyCode) + placeIn(ROW_2, 2, keyCode) + placeIn(ROW_3, 3, keyCode);
}

}  // namespace

std::vector<KeyLegend> keyLegends() {
  const std::vector<TypingKey> keys = typingKeys();
  std::vector<KeyLegend> legends;
  for (const TypingKey& key : keys) {
    if (!key.isDrawn) continue;
    bool isShared = false;
    bool printsItsOwn = key.printed.has_value();
    for (const TypingKey& other : keys) {
      if (other.keyCode == key.keyCode || other.label != key.label) continue;
      isShared = true;
      if (other.printed == key.printed) printsItsOwn = false;
    }
    if (!isShared && !(key.isStandIn && key.printed)) continue;
    legends.push_back({key.keyCode, printsItsOwn ? translate("prints %1", {*key.printed}) : place(key.keyCode)});
  }
  return legends;
}

}  // namespace dormel
