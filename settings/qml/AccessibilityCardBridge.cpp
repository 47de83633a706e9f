#include "settings/qml/AccessibilityCardBridge.h"

#include <utility>

namespace dormel {

AccessibilityCardBridge::AccessibilityCardBridge(std::shared_ptr<AccessibilityCardView> view) : view_(std::move(view)) {
  observation_ = view_->observe([this] { emit changed(); });
}

QStringList AccessibilityCardBridge::plainLines() const {
  return {QStringLiteral("Dormel Requires Accessibility"),
          QStringLiteral("Enable Accessibility in System Settings so Dormel can function properly."),
          QStringLiteral("Dormel will start when enabled.")};
}

}  // namespace dormel
