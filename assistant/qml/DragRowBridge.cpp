#include "assistant/qml/DragRowBridge.h"

#include <utility>

#include "platform/Bundle.h"
#include "platform/Platform.h"
#include "platform/Workspace.h"

namespace dormel {

DragRowBridge::DragRowBridge(std::shared_ptr<AppDragSourceView> view, bool inPlace)
    : view_(std::move(view)), inPlace_(inPlace) {
  if (inPlace_) view_->setOnChange([this] { emit changed(); });
}

DragRowBridge::~DragRowBridge() {
  if (inPlace_) view_->setOnChange({});
}

QUrl DragRowBridge::icon() const {
  const std::string& file = view_->hostApp().icon;
  // Our own icon is drawn as everywhere else in the program: sharp at every scale.
  if (file.empty() || file == platform().workspace.iconForFile(platform().bundle.path())) return {};
  return QUrl::fromLocalFile(QString::fromStdString(file));
}

void DragRowBridge::mouseDown(const QRectF& row) {
  if (inPlace_) view_->mouseDown({row.x(), row.y(), row.width(), row.height()});
}

}  // namespace dormel
