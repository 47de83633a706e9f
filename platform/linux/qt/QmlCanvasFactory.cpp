#include "platform/linux/qt/QmlCanvasFactory.h"

#include <utility>

#include "platform/linux/qt/QmlCanvas.h"
#include "platform/linux/qt/SceneGraph.h"
#include "platform/linux/qt/SceneLoader.h"

namespace dormel {

QmlCanvasFactory::QmlCanvasFactory(QmlSceneRegistry registry)
    : QmlCanvasFactory(std::make_shared<SceneLoader>(std::move(registry))) {}

QmlCanvasFactory::QmlCanvasFactory(std::shared_ptr<SceneLoader> stage) : stage_(std::move(stage)) {
  SceneGraph::useSoftware();
}

QmlCanvasFactory::~QmlCanvasFactory() = default;

std::unique_ptr<Canvas> QmlCanvasFactory::make(std::shared_ptr<View> view) {
  return std::make_unique<QmlCanvas>(stage_, std::move(view));
}

}  // namespace dormel
