#include "settings/AccessibilityCardState.h"

#include "platform/common/Bytes.h"

namespace dormel {

namespace {

constexpr std::size_t LONGEST_TEXT = 1024;

}  // namespace

std::vector<std::string> AccessibilityCardState::plainLines() const { return {words.title, words.text, words.footer}; }

std::string encoded(const AccessibilityCardState& state) {
  ByteWriter to;
  to.put(state.toggleOn);
  const PermissionCardWords& words = state.words;
  for (const std::string* text : {&words.title, &words.text, &words.switchHint, &words.button, &words.footer}) {
    to.putText(*text);
  }
  return to.take();
}

std::optional<AccessibilityCardState> decodedAccessibilityCard(std::string_view bytes) {
  ByteReader from(bytes);
  AccessibilityCardState state;
  state.toggleOn = from.get<bool>();
  PermissionCardWords& words = state.words;
  for (std::string* text : {&words.title, &words.text, &words.switchHint, &words.button, &words.footer}) {
    *text = from.getText(LONGEST_TEXT);
  }
  if (!from.isExact()) return {};
  return state;
}

}  // namespace dormel
