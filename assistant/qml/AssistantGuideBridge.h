// Hands the guide to its QML scene. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <memory>

#include "assistant/OverlayContentView.h"
#include "assistant/qml/DragRowBridge.h"
#include "platform/linux/qt/ViewBridge.h"

namespace dormel {

class AssistantGuideBridge : public ViewBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the stage")
  Q_PROPERTY(QString title READ title CONSTANT)
  Q_PROPERTY(dormel::DragRowBridge* row READ row CONSTANT)

 public:
  explicit AssistantGuideBridge(std::shared_ptr<OverlayContentView> view);

  [[nodiscard]] QString title() const { return QString::fromStdString(view_->title()); }
  [[nodiscard]] DragRowBridge* row() { return &row_; }
  Q_INVOKABLE void back() { view_->back(); }

 private:
  std::shared_ptr<OverlayContentView> view_;
  DragRowBridge row_;
};

}  // namespace dormel
