// Hands the accessibility card to its QML scene. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <memory>

#include "platform/linux/qt/ViewBridge.h"
#include "settings/AccessibilityCardView.h"

namespace dormel {

class AccessibilityCardBridge : public ViewBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the stage")
  Q_PROPERTY(bool toggleOn READ toggleOn NOTIFY changed)

 public:
  explicit AccessibilityCardBridge(std::shared_ptr<AccessibilityCardView> view);

  [[nodiscard]] QStringList plainLines() const override;

  [[nodiscard]] bool toggleOn() const { return view_->toggleOn(); }
  Q_INVOKABLE void openSettings() { view_->openSettings(); }

 protected:
  void appear() override { view_->onAppear(); }

 private:
  std::shared_ptr<AccessibilityCardView> view_;
  Observation observation_;
};

}  // namespace dormel
