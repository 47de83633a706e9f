#include "settings/qml/AccessibilityCardBridge.h"

#include <utility>

namespace dormel {

AccessibilityCardBridge::AccessibilityCardBridge(std::shared_ptr<PaintedView> view) : StateBridge(std::move(view)) {
  takeFirst();
}

bool AccessibilityCardBridge::take(std::string_view state) {
  auto next = decodedAccessibilityCard(state);
  if (!next || *next == state_) return false;
  state_ = std::move(*next);
  return true;
}

}  // namespace dormel
