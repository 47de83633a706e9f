#include <QQuickRenderTarget>

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
  }

  bool render(QQuickRenderControl& control) override {
    control.polishItems();
    control.sync();
    control.render();
    return true;
  }
};

}  // namespace

std::unique_ptr<SceneRenderer> makeSoftwareRenderer() { return std::make_unique<SoftwareRenderer>(); }

}  // namespace dormel
