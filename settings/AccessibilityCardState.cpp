#include "settings/AccessibilityCardState.h"

#include "platform/common/Bytes.h"

namespace dormel {

std::vector<std::string> AccessibilityCardState::plainLines() {
  return {"Dormel Requires Accessibility", "Enable Accessibility in System Settings so Dormel can function properly.",
          "Dormel will start when enabled."};
}

std::string encoded(const AccessibilityCardState& state) { return ByteWriter().put(state.toggleOn).take(); }

std::optional<AccessibilityCardState> decodedAccessibilityCard(std::string_view bytes) {
  ByteReader from(bytes);
  const AccessibilityCardState state{from.get<bool>()};
  if (!from.isExact()) return {};
  return state;
}

}  // namespace dormel
