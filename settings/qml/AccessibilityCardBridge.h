// Hands the accessibility card's state to its QML scene. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <memory>

#include "platform/linux/qt/StateBridge.h"
#include "settings/AccessibilityCardState.h"

namespace dormel {

class AccessibilityCardBridge : public StateBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the stage")
  Q_PROPERTY(bool toggleOn READ toggleOn NOTIFY changed)

 public:
  explicit AccessibilityCardBridge(std::shared_ptr<PaintedView> view);

  [[nodiscard]] QStringList plainLines() const override;

  [[nodiscard]] bool toggleOn() const { return state_.toggleOn; }
  Q_INVOKABLE void openSettings() { act(AccessibilityCardState::OPEN_SETTINGS); }

 protected:
  bool take(std::string_view state) override;

 private:
  AccessibilityCardState state_;
};

}  // namespace dormel
