// One view, drawn into an image.
//
// Nothing runs while nothing changes: a frame is drawn when the picture asks for one, no sooner than 16 ms after the
// one before, and reported only if a pixel differs. Main thread only.
#pragma once

#include <QElapsedTimer>
#include <QImage>
#include <QTimer>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/common/Canvas.h"
#include "platform/linux/qt/QmlPicture.h"
#include "platform/linux/qt/SceneLoader.h"

namespace dormel {

class QmlCanvas : public Canvas {
 public:
  /// `onBroken` is called once, in a turn of the loop, when the view cannot be drawn; nothing more comes of it then.
  QmlCanvas(std::shared_ptr<SceneLoader> stage, std::shared_ptr<View> view, std::function<void()> onBroken = {});
  QmlCanvas(const QmlCanvas&) = delete;
  QmlCanvas& operator=(const QmlCanvas&) = delete;
  ~QmlCanvas() override = default;

  [[nodiscard]] Size fittingSize() const override { return picture() != nullptr ? picture_->fittingSize() : Size{}; }
  void resize(const Size& size, double scale) override;
  void setOnFrame(std::function<void(const Pixels& pixels, const PixelRect& changed)> onFrame) override;
  void setShowing(bool showing) override;
  bool pointer(PointerAction action, double x, double y) override {
    return picture() != nullptr && picture_->pointer(action, x, y);
  }

  /// Called after each time it has drawn, whether a pixel differs or not.
  void setOnDrawn(std::function<void()> onDrawn) { onDrawn_ = std::move(onDrawn); }
  [[nodiscard]] std::vector<Rect> pressableAreas() const {
    return picture_ ? picture_->pressableAreas() : std::vector<Rect>{};
  }

  /// Whether a frame is going to be drawn. While it is not, this canvas costs nothing.
  [[nodiscard]] bool isFramePending() const { return frameTimer_.isActive(); }

 private:
  /// Null where there is none.
  [[nodiscard]] QmlPicture* picture() const;
  void requestFrame() const;
  void drawFrame();
  void report();

  std::shared_ptr<SceneLoader> stage_;
  std::shared_ptr<View> view_;
  std::function<void(const Pixels&, const PixelRect&)> onFrame_;
  std::function<void()> onDrawn_;
  std::function<void()> onBroken_;
  bool showing_ = false;
  Size size_;
  QImage image_;
  QImage reported_;  // the picture as last reported; null when all of it is to be
  QElapsedTimer sinceFrame_;
  mutable QTimer frameTimer_;
  bool retarget_ = true;
  mutable bool isBroken_ = false;
  mutable std::unique_ptr<QmlPicture> picture_;  // made when first needed; goes first, since it draws into image_
};

}  // namespace dormel
