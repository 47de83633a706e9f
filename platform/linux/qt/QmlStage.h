// The QML engine that all canvases share, and the scenes they may load. Main thread only.
#pragma once

#include <QQmlEngine>
#include <functional>
#include <memory>

#include "platform/linux/qt/Picture.h"
#include "platform/linux/qt/QmlSceneRegistry.h"

namespace dormel {

class QmlStage {
 public:
  explicit QmlStage(QmlSceneRegistry registry);

  /// The picture of `view`; `onChange` is called whenever it has something to draw. A scene that is missing or
  /// cannot be loaded is reported in one line on standard error, and the view's plain text takes its place.
  [[nodiscard]] std::unique_ptr<Picture> makePicture(const std::shared_ptr<View>& view,
                                                     const std::function<void()>& onChange);

 private:
  QmlSceneRegistry registry_;
  std::unique_ptr<QQmlEngine> engine_;  // made for the first scene
};

}  // namespace dormel
