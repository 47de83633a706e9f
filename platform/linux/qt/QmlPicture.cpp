#include "platform/linux/qt/QmlPicture.h"

#include <QtQuick/private/qquickwindow_p.h>
#include <QtQuick/private/qsgsoftwarerenderer_p.h>

#include <QCoreApplication>
#include <QMouseEvent>
#include <QQuickRenderTarget>
#include <cmath>
#include <utility>

#include "platform/common/PixelRect.h"

namespace dormel {
namespace {

QEvent::Type typeOf(PointerAction action) {
  switch (action) {
    case PointerAction::press:
      return QEvent::MouseButtonPress;
    case PointerAction::release:
      return QEvent::MouseButtonRelease;
    case PointerAction::move:
    case PointerAction::leave:
      break;
  }
  return QEvent::MouseMove;
}

void collectPressable(const QQuickItem& item, std::vector<Rect>& areas) {
  if (!item.isVisible() || !item.isEnabled()) return;
  // A text takes the pointer for the sake of links, which ours have not.
  if (item.acceptedMouseButtons().testFlag(Qt::LeftButton) && !item.inherits("QQuickText")) {
    const QRectF box = item.mapRectToScene(item.boundingRect());
    areas.push_back({box.x(), box.y(), box.width(), box.height()});
  }
  for (const QQuickItem* child : item.childItems()) collectPressable(*child, areas);
}

}  // namespace

QmlPicture::QmlPicture(LoadedScene scene, const std::function<void()>& onChange)
    : bridge_(std::move(scene.bridge)), root_(std::move(scene.root)) {
  // The window takes the control when it is made and must outlive it.
  auto control = std::make_unique<QQuickRenderControl>();
  window_ = std::make_unique<QQuickWindow>(control.get());
  control_ = std::move(control);
  window_->setColor(scene.background);
  root_->setParentItem(window_->contentItem());
  QObject::connect(control_.get(), &QQuickRenderControl::renderRequested, window_.get(), onChange);
  QObject::connect(control_.get(), &QQuickRenderControl::sceneChanged, window_.get(), onChange);
}

QmlPicture::~QmlPicture() = default;

Size QmlPicture::fittingSize() const {
  control_->polishItems();
  return {root_->implicitWidth(), root_->implicitHeight()};
}

void QmlPicture::setTarget(QImage& image, const Size& size) {
  window_->setGeometry(0, 0, static_cast<int>(std::ceil(size.width)), static_cast<int>(std::ceil(size.height)));
  bridge_->setPixelRatio(image.devicePixelRatio());
  root_->setSize({size.width, size.height});
  QQuickRenderTarget target = QQuickRenderTarget::fromPaintDevice(&image);
  target.setDevicePixelRatio(image.devicePixelRatio());
  window_->setRenderTarget(target);
  image_ = &image;
  isNew_ = true;
}

void QmlPicture::draw() {
  // The control is never initialised: that is for graphics drivers, and would load one. Frames begin and end for them,
  // too; without one, Qt 6.8 complains twice for each.
  control_->polishItems();
  control_->sync();
  control_->render();
  isKnown_ = !std::exchange(isNew_, false);
}

std::optional<PixelRect> QmlPicture::drawn() const {
  if (!isKnown_) return {};
  // Only the renderer knows, and it tells nobody in public. In a picture of which an end of an arc moves, comparing
  // all pixels to find out takes longer than drawing does.
  const auto* renderer = dynamic_cast<const QSGSoftwareRenderer*>(QQuickWindowPrivate::get(window_.get())->renderer);
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

std::vector<Rect> QmlPicture::pressableAreas() const {
  std::vector<Rect> areas;
  collectPressable(*root_, areas);
  return areas;
}

bool QmlPicture::pointer(PointerAction action, double x, double y) {
  if (action == PointerAction::leave) {
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(window_.get(), &leave);
    return false;
  }
  if (action == PointerAction::press) pressed_ = true;
  const Qt::MouseButtons held = pressed_ && action != PointerAction::release ? Qt::LeftButton : Qt::NoButton;
  const Qt::MouseButton button = action == PointerAction::move ? Qt::NoButton : Qt::LeftButton;
  if (action == PointerAction::release) pressed_ = false;
  const QPointF at(x, y);
  QMouseEvent event(typeOf(action), at, at, at, button, held, Qt::NoModifier);
  event.setAccepted(false);
  QCoreApplication::sendEvent(window_.get(), &event);
  return event.isAccepted();
}

}  // namespace dormel
