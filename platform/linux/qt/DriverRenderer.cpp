#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>
#include <QQuickGraphicsDevice>
#include <QQuickRenderTarget>
#include <optional>

#include "platform/linux/qt/SceneRenderer.h"

namespace dormel {
namespace {

// Not in the headers of OpenGL ES.
constexpr GLenum BGRA = 0x80E1;
constexpr GLenum NATIVE_ARGB = 0x8367;  // GL_UNSIGNED_INT_8_8_8_8_REV

/// A context of its own, so that a scene that goes wrong leaves the windows alone.
class DriverRenderer : public SceneRenderer {
 public:
  DriverRenderer() = default;
  DriverRenderer(const DriverRenderer&) = delete;
  DriverRenderer& operator=(const DriverRenderer&) = delete;
  ~DriverRenderer() override {
    if (buffer_ && context_.makeCurrent(&surface_)) buffer_.reset();
  }

  void setTarget(QQuickWindow& window, QImage& image) override {
    window_ = &window;
    image_ = &image;
    isTargetNew_ = true;
  }

  bool render(QQuickRenderControl& control) override {
    if (!isReady_) isReady_ = prepare(control);
    if (!*isReady_ || !context_.isValid() || !context_.makeCurrent(&surface_)) return false;
    if (isTargetNew_ && !makeTarget()) return false;
    control.polishItems();
    control.beginFrame();
    control.sync();
    control.render();
    control.endFrame();
    return readBack();
  }

 private:
  bool prepare(QQuickRenderControl& control) {
    QSurfaceFormat format = window_->requestedFormat();
    format.setAlphaBufferSize(8);
    format.setOption(QSurfaceFormat::ResetNotification);  // a driver that was reset is to be noticed
    context_.setFormat(format);
    if (!context_.create()) return false;
    surface_.setFormat(context_.format());
    surface_.create();
    if (!surface_.isValid() || !context_.makeCurrent(&surface_)) return false;
    window_->setGraphicsDevice(QQuickGraphicsDevice::fromOpenGLContext(&context_));
    return control.initialize();
  }

  bool makeTarget() {
    buffer_.emplace(image_->size());
    if (!buffer_->isValid()) return false;
    QQuickRenderTarget target = QQuickRenderTarget::fromOpenGLTexture(buffer_->texture(), image_->size());
    target.setDevicePixelRatio(image_->devicePixelRatio());
    target.setMirrorVertically(true);  // the first row read is the top one
    window_->setRenderTarget(target);
    isTargetNew_ = false;
    return true;
  }

  bool readBack() {
    if (!context_.makeCurrent(&surface_) || !buffer_->bind()) return false;
    QOpenGLFunctions& gl = *context_.functions();
    while (gl.glGetError() != GL_NO_ERROR && context_.isValid()) {
    }
    const bool isSmall = context_.isOpenGLES();  // there, only this one order of bytes is certain
    gl.glPixelStorei(GL_PACK_ALIGNMENT, 4);
    gl.glReadPixels(0, 0, image_->width(), image_->height(), isSmall ? GL_RGBA : BGRA,
                    isSmall ? GL_UNSIGNED_BYTE : NATIVE_ARGB, image_->bits());
    const bool isRead = gl.glGetError() == GL_NO_ERROR;
    buffer_->release();
    if (isSmall) image_->rgbSwap();
    return isRead;
  }

  QOpenGLContext context_;
  QOffscreenSurface surface_;
  QQuickWindow* window_ = nullptr;
  QImage* image_ = nullptr;
  std::optional<bool> isReady_;
  bool isTargetNew_ = false;
  std::optional<QOpenGLFramebufferObject> buffer_;
};

}  // namespace

std::unique_ptr<SceneRenderer> makeDriverRenderer() { return std::make_unique<DriverRenderer>(); }

}  // namespace dormel
