// A view's QML scene, rendered without a window on any display. Main thread only.
#pragma once

#include <QQuickRenderControl>
#include <QQuickWindow>
#include <functional>
#include <memory>

#include "platform/linux/qt/LoadedScene.h"
#include "platform/linux/qt/Picture.h"
#include "platform/linux/qt/SceneRenderer.h"

namespace dormel {

class QmlPicture : public Picture {
 public:
  /// `root` is a scene's root item that reads `bridge`. `onChange` is called whenever there is something to draw.
  QmlPicture(LoadedScene scene, std::unique_ptr<SceneRenderer> renderer, const std::function<void()>& onChange);
  QmlPicture(const QmlPicture&) = delete;
  QmlPicture& operator=(const QmlPicture&) = delete;
  ~QmlPicture() override;

  [[nodiscard]] Size fittingSize() const override;
  void setTarget(QImage& image, const Size& size) override;
  void setShowing(bool showing) override { bridge_->setShowing(showing); }
  bool draw() override { return renderer_->render(*control_); }
  [[nodiscard]] std::optional<PixelRect> drawn() const override { return renderer_->drawn(); }
  [[nodiscard]] std::vector<Rect> pressableAreas() const override;
  bool pointer(PointerAction action, double x, double y) override;

 private:
  // Destroyed from the last to the first: the items, then what renders them, the window, and last what they need.
  std::unique_ptr<ViewBridge> bridge_;
  std::unique_ptr<SceneRenderer> renderer_;
  std::unique_ptr<QQuickWindow> window_;
  std::unique_ptr<QQuickRenderControl> control_;
  std::unique_ptr<QQuickItem> root_;
  bool pressed_ = false;
};

}  // namespace dormel
