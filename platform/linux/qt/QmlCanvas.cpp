#include "platform/linux/qt/QmlCanvas.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/common/paint/Messages.h"
#include "platform/linux/qt/ChangedRect.h"

namespace dormel {
namespace {

constexpr qint64 FRAME_INTERVAL = 16;  // ms

Pixels pixelsOf(const QImage& image) {
  return {reinterpret_cast<const std::uint32_t*>(image.constBits()), image.width(), image.height(),
          image.bytesPerLine() / static_cast<qsizetype>(sizeof(std::uint32_t))};
}

Pixels part(const Pixels& pixels, const PixelRect& area) {
  return {pixels.data + area.y * pixels.stride + area.x, area.width, area.height, pixels.stride};
}

}  // namespace

QmlCanvas::QmlCanvas(std::shared_ptr<SceneLoader> stage, std::shared_ptr<View> view, std::function<void()> onBroken)
    : stage_(std::move(stage)), view_(std::move(view)), onBroken_(std::move(onBroken)) {
  frameTimer_.setSingleShot(true);
  frameTimer_.setTimerType(Qt::PreciseTimer);
  QObject::connect(&frameTimer_, &QTimer::timeout, &frameTimer_, [this] { drawFrame(); });
}

QmlPicture* QmlCanvas::picture() const {
  if (!picture_ && !isBroken_) {
    picture_ = stage_->makePicture(view_, [this] { requestFrame(); });
    isBroken_ = !picture_;
    if (picture_ && showing_) picture_->setShowing(true);
  }
  return picture_.get();
}

void QmlCanvas::resize(const Size& size, double scale) {
  const int width = paint::pixelLength(size.width, scale);
  const int height = paint::pixelLength(size.height, scale);
  if (!image_.isNull() && size == size_ && scale == image_.devicePixelRatio()) return;
  size_ = size;
  image_ = QImage(width, height, QImage::Format_ARGB32_Premultiplied);
  image_.setDevicePixelRatio(scale);
  image_.fill(Qt::transparent);
  reported_ = {};
  retarget_ = true;
  requestFrame();
}

void QmlCanvas::setOnFrame(std::function<void(const Pixels& pixels, const PixelRect& changed)> onFrame) {
  onFrame_ = std::move(onFrame);
  reported_ = {};
  requestFrame();
}

void QmlCanvas::setShowing(bool showing) {
  if (showing_ == showing) return;
  showing_ = showing;
  if (!showing) frameTimer_.stop();
  if (picture_) picture_->setShowing(showing);
  requestFrame();
}

void QmlCanvas::requestFrame() const {
  if (!showing_ || !onFrame_ || image_.isNull() || frameTimer_.isActive()) return;
  const qint64 elapsed = sinceFrame_.isValid() ? sinceFrame_.elapsed() : FRAME_INTERVAL;
  frameTimer_.start(static_cast<int>(std::max<qint64>(FRAME_INTERVAL - elapsed, 0)));
}

void QmlCanvas::drawFrame() {
  if (picture() != nullptr && std::exchange(retarget_, false)) picture_->setTarget(image_, size_);
  sinceFrame_.start();
  if (!picture_) {
    if (const auto broken = std::exchange(onBroken_, {})) broken();
    return;
  }
  picture_->draw();
  report();
  if (onDrawn_) onDrawn_();
}

void QmlCanvas::report() {
  const Pixels after = pixelsOf(image_);
  PixelRect changed{0, 0, after.width, after.height};
  if (reported_.isNull()) {
    reported_ = image_.copy();
  } else {
    const PixelRect drawn = picture_->drawn().value_or(changed);
    if (drawn.empty()) return;
    changed = changedRect(part(pixelsOf(reported_), drawn), part(after, drawn));
    if (changed.empty()) return;
    changed.x += drawn.x;
    changed.y += drawn.y;
    const qsizetype offset = static_cast<qsizetype>(changed.x) * 4;
    const auto length = static_cast<std::size_t>(changed.width) * 4;
    for (int y = changed.y; y < changed.y + changed.height; ++y) {
      std::memcpy(reported_.scanLine(y) + offset, image_.constScanLine(y) + offset, length);
    }
  }
  onFrame_(after, changed);
}

}  // namespace dormel
