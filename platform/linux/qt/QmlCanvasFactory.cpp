#include "platform/linux/qt/QmlCanvasFactory.h"

#include <QQuickWindow>
#include <utility>

#include "platform/linux/qt/QmlCanvas.h"
#include "platform/linux/qt/QmlStage.h"

namespace dormel {

QmlCanvasFactory::QmlCanvasFactory(QmlSceneRegistry registry)
    : stage_(std::make_shared<QmlStage>(std::move(registry))) {
  const QString software = QStringLiteral("software");
  if (QQuickWindow::sceneGraphBackend() != software) QQuickWindow::setSceneGraphBackend(software);
}

QmlCanvasFactory::~QmlCanvasFactory() = default;

std::unique_ptr<Canvas> QmlCanvasFactory::make(std::shared_ptr<View> view) {
  return std::make_unique<QmlCanvas>(stage_, std::move(view));
}

}  // namespace dormel
