// Draws views with QML into memory: no window, no display. Main thread only.
//
// Needs a QGuiApplication (the "offscreen" platform will do).
#pragma once

#include <memory>

#include "platform/common/Canvas.h"
#include "platform/linux/qt/QmlSceneRegistry.h"

namespace dormel {

/// What all canvases of a factory share; the QML engine in it is made when the first scene is loaded.
class SceneLoader;

class QmlCanvasFactory : public CanvasFactory {
 public:
  /// In software, with a stage of its own.
  explicit QmlCanvasFactory(QmlSceneRegistry registry);
  /// Shares the stage with windows of the toolkit's own.
  explicit QmlCanvasFactory(std::shared_ptr<SceneLoader> stage);
  ~QmlCanvasFactory() override;

  /// Costs next to nothing: the scene is loaded when the canvas is first asked for its size, or just before its
  /// first frame. A window can therefore be on screen before its content is.
  [[nodiscard]] std::unique_ptr<Canvas> make(std::shared_ptr<View> view) override;

 private:
  std::shared_ptr<SceneLoader> stage_;
};

}  // namespace dormel
