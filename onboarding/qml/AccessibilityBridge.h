// Hands the screen of the permission to its scene. Main thread only.
#pragma once

#include <memory>
#include <utility>

#include "onboarding/AccessibilityBeat.h"
#include "onboarding/qml/BeatBridge.h"

namespace dormel {

class AccessibilityBridge : public BeatBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the first run's bridge")
  Q_PROPERTY(dormel::OnbTextValue row READ row NOTIFY changed)
  Q_PROPERTY(double rowWidth READ rowWidth CONSTANT)
  Q_PROPERTY(bool granted READ granted NOTIFY changed)
  Q_PROPERTY(QString grantTitle READ grantTitle NOTIFY changed)
  Q_PROPERTY(QString advice READ advice NOTIFY changed)

 public:
  explicit AccessibilityBridge(std::shared_ptr<AccessibilityBeat> screen)
      : BeatBridge(screen, QStringLiteral("AccessibilityBeat"), {&screen->headline, &screen->sub, &screen->button}),
        screen_(std::move(screen)) {}

  [[nodiscard]] OnbTextValue row() const { return OnbTextValue::line(screen_->row); }
  [[nodiscard]] static double rowWidth() { return AccessibilityBeat::ROW_WIDTH; }
  [[nodiscard]] bool granted() const { return screen_->granted(); }
  [[nodiscard]] QString grantTitle() const { return QString::fromStdString(screen_->grantTitle()); }
  [[nodiscard]] QString advice() const { return QString::fromStdString(screen_->advice()); }

  Q_INVOKABLE void grant() const { screen_->grant(); }

 private:
  std::shared_ptr<AccessibilityBeat> screen_;
};

}  // namespace dormel
