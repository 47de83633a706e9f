#include <QtQuick/private/qquickwindow_p.h>
#include <QtQuick/private/qsgsoftwarerenderer_p.h>
#include <QQuickRenderTarget>
#include <cmath>
#include <utility>

#include "platform/linux/qt/SceneRenderer.h"

namespace dormel {
namespace {

/// The control is never initialised: that is for graphics drivers, and would load one. Frames begin and end for them,
/// too; without one, Qt 6.8 complains twice for each.
class SoftwareRenderer : public SceneRenderer {
 public:
  void setTarget(QQuickWindow& window, QImage& image) override {
    QQuickRenderTarget target = QQuickRenderTarget::fromPaintDevice(&image);
    target.setDevicePixelRatio(image.devicePixelRatio());
    window.setRenderTarget(target);
    window_ = &window;
    image_ = &image;
    isNew_ = true;
  }

  bool render(QQuickRenderControl& control) override {
    control.polishItems();
    control.sync();
    control.render();
    isKnown_ = !std::exchange(isNew_, false);
    return true;
  }

  [[nodiscard]] std::optional<PixelRect> drawn() const override {
    if (!isKnown_) return {};
    // Only the renderer knows, and it tells nobody in public. In a picture of which an end of an arc moves, comparing
    // all pixels to find out takes longer than drawing does.
    const auto* renderer = dynamic_cast<const QSGSoftwareRenderer*>(QQuickWindowPrivate::get(window_)->renderer);
    if (renderer == nullptr) return {};
    const QRect points = renderer->flushRegion().boundingRect();
    if (points.isEmpty()) return PixelRect{};
    constexpr int SMEAR = 1;  // at fractional scales an edge's pixel is shared
    const double scale = image_->devicePixelRatio();
    const int left = static_cast<int>(std::floor(points.x() * scale)) - SMEAR;
    const int top = static_cast<int>(std::floor(points.y() * scale)) - SMEAR;
    const int right = static_cast<int>(std::ceil((points.x() + points.width()) * scale)) + SMEAR;
    const int bottom = static_cast<int>(std::ceil((points.y() + points.height()) * scale)) + SMEAR;
    return intersection({left, top, right - left, bottom - top}, {0, 0, image_->width(), image_->height()});
  }

 private:
  QQuickWindow* window_ = nullptr;
  const QImage* image_ = nullptr;
  bool isNew_ = true;     ///< the target has not been rendered into
  bool isKnown_ = false;  ///< what the last call changed
};

}  // namespace

std::unique_ptr<SceneRenderer> makeSoftwareRenderer() { return std::make_unique<SoftwareRenderer>(); }

}  // namespace dormel
