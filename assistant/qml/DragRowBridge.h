// Hands the guide's drag row to its QML scene: in the guide, and by itself while it is dragged. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QRectF>
#include <QUrl>
#include <memory>

#include "assistant/AppDragSourceView.h"
#include "platform/linux/qt/ViewBridge.h"

namespace dormel {

class DragRowBridge : public ViewBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the stage")
  Q_PROPERTY(QString name READ name CONSTANT)
  /// The icon's file; empty where the program draws its own tile.
  Q_PROPERTY(QUrl icon READ icon CONSTANT)
  Q_PROPERTY(bool rowHidden READ rowHidden NOTIFY changed)

 public:
  /// With `inPlace` it is the guide's row, which is hidden while it is dragged; otherwise it is what is dragged.
  explicit DragRowBridge(std::shared_ptr<AppDragSourceView> view, bool inPlace = false);
  ~DragRowBridge() override;

  [[nodiscard]] QString name() const { return QString::fromStdString(view_->hostApp().displayName); }
  [[nodiscard]] QUrl icon() const;
  [[nodiscard]] bool rowHidden() const { return inPlace_ && view_->isRowHidden(); }
  /// The main button went down; `row` in the scene.
  Q_INVOKABLE void mouseDown(const QRectF& row);

 private:
  std::shared_ptr<AppDragSourceView> view_;
  const bool inPlace_;
};

}  // namespace dormel
