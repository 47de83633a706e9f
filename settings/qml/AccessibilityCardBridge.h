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
  Q_PROPERTY(QString title READ title NOTIFY changed)
  Q_PROPERTY(QString text READ text NOTIFY changed)
  Q_PROPERTY(QString switchHint READ switchHint NOTIFY changed)
  Q_PROPERTY(QString button READ button NOTIFY changed)
  Q_PROPERTY(QString footer READ footer NOTIFY changed)

 public:
  explicit AccessibilityCardBridge(std::shared_ptr<PaintedView> view);

  [[nodiscard]] bool toggleOn() const { return state_.toggleOn; }
  [[nodiscard]] QString title() const { return QString::fromStdString(state_.words.title); }
  [[nodiscard]] QString text() const { return QString::fromStdString(state_.words.text); }
  [[nodiscard]] QString switchHint() const { return QString::fromStdString(state_.words.switchHint); }
  [[nodiscard]] QString button() const { return QString::fromStdString(state_.words.button); }
  [[nodiscard]] QString footer() const { return QString::fromStdString(state_.words.footer); }
  Q_INVOKABLE void openSettings() { act(AccessibilityCardState::OPEN_SETTINGS); }

 protected:
  bool take(std::string_view state) override;

 private:
  AccessibilityCardState state_;
};

}  // namespace dormel
