// Hands the about panel to its QML scene. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <memory>
#include <utility>

#include "platform/linux/qt/AboutView.h"
#include "platform/linux/qt/ViewBridge.h"

namespace dormel {

class AboutBridge : public ViewBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the stage")
  Q_PROPERTY(QString versionText READ versionText CONSTANT)

 public:
  explicit AboutBridge(std::shared_ptr<AboutView> view) : view_(std::move(view)) {}

  [[nodiscard]] QString versionText() const { return QString::fromStdString(view_->versionText()); }

 private:
  std::shared_ptr<AboutView> view_;
};

}  // namespace dormel
