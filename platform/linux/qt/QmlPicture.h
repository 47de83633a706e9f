// A view's QML scene, rendered without a window on any display, in software (SceneGraph::useSoftware). Main thread
// only.
#pragma once

#include <QImage>
#include <QQuickRenderControl>
#include <QQuickWindow>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/common/Canvas.h"
#include "platform/linux/qt/LoadedScene.h"

namespace dormel {

class QmlPicture {
 public:
  /// `root` is a scene's root item that reads `bridge`. `onChange` is called whenever there is something to draw.
  QmlPicture(LoadedScene scene, const std::function<void()>& onChange);
  QmlPicture(const QmlPicture&) = delete;
  QmlPicture& operator=(const QmlPicture&) = delete;
  ~QmlPicture();

  /// The size in points at which it is as it wants to be.
  [[nodiscard]] Size fittingSize() const;
  /// Draws into `image` at `size` points from now on; the image's device pixel ratio is the scale. Its pixels are
  /// the picture's alone until the next call, since only what changed is drawn again.
  void setTarget(QImage& image, const Size& size);
  void setShowing(bool showing) { bridge_->setShowing(showing); }
  /// Brings the target up to date.
  void draw();
  /// Outside of this rectangle, in pixels, the last `draw` changed nothing. Nothing where it cannot tell.
  [[nodiscard]] std::optional<PixelRect> drawn() const;
  /// Where a press is taken, in points from the top left.
  [[nodiscard]] std::vector<Rect> pressableAreas() const;
  /// As Canvas::pointer.
  bool pointer(PointerAction action, double x, double y);

 private:
  // Destroyed from the last to the first: the items, then what renders them, the window, and last what they read.
  std::unique_ptr<ViewBridge> bridge_;
  std::unique_ptr<QQuickWindow> window_;
  std::unique_ptr<QQuickRenderControl> control_;
  std::unique_ptr<QQuickItem> root_;
  const QImage* image_ = nullptr;
  bool isNew_ = true;     ///< the target has not been drawn into
  bool isKnown_ = false;  ///< what the last `draw` changed
  bool pressed_ = false;
};

}  // namespace dormel
