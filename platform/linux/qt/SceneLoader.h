// The QML engine that all canvases and windows share, and the scenes they may load. Main thread only.
#pragma once

#include <QQmlEngine>
#include <functional>
#include <memory>

#include "platform/linux/qt/DrawingServices.h"
#include "platform/linux/qt/LoadedScene.h"
#include "platform/linux/qt/QmlPicture.h"
#include "platform/linux/qt/QmlSceneRegistry.h"

namespace dormel {

class SceneLoader {
 public:
  explicit SceneLoader(QmlSceneRegistry registry, DrawingServices services = DrawingServices::ofPlatform());

  /// The scene of `view`. One that is missing or cannot be loaded is reported in one line on standard error.
  [[nodiscard]] LoadedScene load(const std::shared_ptr<View>& view);

  /// The picture of `view`; `onChange` is called whenever it has something to draw. Null where there is no scene.
  [[nodiscard]] std::unique_ptr<QmlPicture> makePicture(const std::shared_ptr<View>& view,
                                                        const std::function<void()>& onChange);
  /// What a window wears, see QmlSceneRegistry::setWindowFrame; null when there is none.
  [[nodiscard]] std::unique_ptr<QQuickItem> makeWindowFrame(bool minimizable);

 private:
  QQmlEngine& engine();
  void report(const QString& reason) const;
  std::unique_ptr<QQuickItem> create(const QUrl& source, const QVariantMap& properties);

  QmlSceneRegistry registry_;
  DrawingServices services_;
  std::unique_ptr<QQmlEngine> engine_;  // made for the first scene
};

}  // namespace dormel
