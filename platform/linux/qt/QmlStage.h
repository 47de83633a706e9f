// The QML engine that all canvases and windows share, and the scenes they may load. Main thread only.
#pragma once

#include <QColor>
#include <QQmlEngine>
#include <QQuickItem>
#include <functional>
#include <memory>

#include "platform/linux/qt/Picture.h"
#include "platform/linux/qt/QmlSceneRegistry.h"

namespace dormel {

/// A view's scene, loaded. The root reads the bridge and must go first.
struct LoadedScene {
  std::unique_ptr<ViewBridge> bridge;  ///< null when nobody registered a scene for the view
  std::unique_ptr<QQuickItem> root;    ///< null when the scene cannot be had
  QColor background = Qt::transparent;
};

class QmlStage {
 public:
  explicit QmlStage(QmlSceneRegistry registry);

  /// The scene of `view`. One that is missing or cannot be loaded is reported in one line on standard error.
  [[nodiscard]] LoadedScene load(const std::shared_ptr<View>& view);

  /// The picture of `view`; `onChange` is called whenever it has something to draw. Where there is no scene, the
  /// view's plain text takes its place.
  [[nodiscard]] std::unique_ptr<Picture> makePicture(const std::shared_ptr<View>& view,
                                                     const std::function<void()>& onChange);

  /// What a window wears, see QmlSceneRegistry::setWindowFrame; null when there is none.
  [[nodiscard]] std::unique_ptr<QQuickItem> makeWindowFrame(bool minimizable);

 private:
  QQmlEngine& engine();
  std::unique_ptr<QQuickItem> create(const QUrl& source, const QVariantMap& properties);

  QmlSceneRegistry registry_;
  std::unique_ptr<QQmlEngine> engine_;  // made for the first scene
};

}  // namespace dormel
