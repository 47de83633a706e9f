#include "platform/linux/qt/DesktopWindow.h"

#include <QCoreApplication>
#include <QCursor>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QScreen>
#include <QStyleHints>
#include <QSurfaceFormat>
#include <cmath>
#include <utility>

#include "platform/linux/qt/SceneGraph.h"

namespace dormel {
namespace {

/// Where a window that belongs to no other one comes up: where the user is.
QScreen* screenOfPointer() {
  QScreen* at = QGuiApplication::screenAt(QCursor::pos());
  return at != nullptr ? at : QGuiApplication::primaryScreen();
}

}  // namespace

DesktopWindow::DesktopWindow(std::shared_ptr<WindowGroup> group, const std::shared_ptr<View>& view,
                             Qt::WindowFlags flags)
    : group_(std::move(group)), isRounded_(group_->help().canBlend && group_->help().canBlend()) {
  setFlags(flags | Qt::FramelessWindowHint);
  if (isRounded_) {
    QSurfaceFormat format = this->format();
    format.setAlphaBufferSize(8);
    setFormat(format);
  }
  scene_ = group_->stage().load(view);
  setColor(isRounded_ ? QColor(Qt::transparent) : scene_.background);
  if (scene_.root) scene_.root->setParentItem(contentItem());
  connect(this, &QQuickWindow::sceneGraphError, this,
          [](QQuickWindow::SceneGraphError, const QString& reason) { SceneGraph::startAgainInSoftware(reason); });
  connect(this, &QWindow::visibilityChanged, this, [this] { tellShowing(); });
  connect(this, &QWindow::screenChanged, this, [this] { tellShowing(); });
}

DesktopWindow::~DesktopWindow() {
  // The window beneath goes off the screen only after what stands in it is gone.
  disconnect(this, nullptr, this, nullptr);
}

void DesktopWindow::tellShowing() {
  if (!scene_.bridge) return;
  scene_.bridge->setPixelRatio(effectiveDevicePixelRatio());
  scene_.bridge->setShowing(visibility() != QWindow::Hidden && visibility() != QWindow::Minimized);
}

void DesktopWindow::fixSize(std::optional<Size> size) {
  if (!size && scene_.root) size = contentFittingSize();
  if (!size) return;
  QSize whole(static_cast<int>(std::ceil(size->width)), static_cast<int>(std::ceil(size->height)));
  if (const QScreen* at = screenOfPointer()) whole = whole.boundedTo(at->availableSize());
  if (scene_.root) scene_.root->setSize(whole);
  if (frame_) frame_->setSize(whole);
  resize(whole);
  setMinimumSize(whole);
  setMaximumSize(whole);
}

void DesktopWindow::place(const QRect& geometry) {
  if (scene_.root) scene_.root->setSize(geometry.size());
  if (geometry != this->geometry()) setGeometry(geometry);
}

Size DesktopWindow::contentFittingSize() const {
  if (!scene_.root) return {};
  scene_.root->ensurePolished();
  return {scene_.root->implicitWidth(), scene_.root->implicitHeight()};
}

void DesktopWindow::wearFrame(bool minimizable) {
  frame_ = group_->stage().makeWindowFrame(minimizable);
  if (!frame_) return;
  frame_->setParentItem(contentItem());
  frame_->setZ(1);
  frame_->setSize(size());
}

void DesktopWindow::centre(const QWindow* over) {
  const QScreen* at = screenOfPointer();
  if (over == nullptr && at == nullptr) return;
  const QRect area = over != nullptr ? over->geometry() : at->availableGeometry();
  setPosition(area.x() + (area.width() - width()) / 2, area.y() + (area.height() - height()) / 2);
}

void DesktopWindow::bringToFront() {
  if (windowStates() & Qt::WindowMinimized) {
    showNormal();
  } else {
    show();
  }
  raise();
  requestActivate();
  if (group_->help().activate) group_->help().activate(winId());
}

void DesktopWindow::dismiss() {
  onCloseRequest_ = {};
  hide();
  deleteLater();
}

void DesktopWindow::requestClose() {
  // Not from inside the event: the answer may be to end the process, or this window.
  QMetaObject::invokeMethod(
      this,
      [this] {
        const Task request = onCloseRequest_;
        if (request) request();
      },
      Qt::QueuedConnection);
}

bool DesktopWindow::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::Close:
      event->ignore();
      requestClose();
      return true;
    case QEvent::KeyPress:
      if (group_->takes(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
      }
      break;
    default:
      break;
  }
  return QQuickWindow::event(event);
}

void DesktopWindow::mousePressEvent(QMouseEvent* event) {
  lastPress_ = event->globalPosition().toPoint();
  QQuickWindow::mousePressEvent(event);
  drag_.reset();
  if (isMovable_ && event->button() == Qt::LeftButton && mouseGrabberItem() == nullptr) {
    drag_ = Drag{event->globalPosition().toPoint(), position()};
  }
}

void DesktopWindow::mouseMoveEvent(QMouseEvent* event) {
  QQuickWindow::mouseMoveEvent(event);
  if (!drag_ || !(event->buttons() & Qt::LeftButton)) return;
  const QPoint way = event->globalPosition().toPoint() - drag_->pointer;
  if (!drag_->byUs) {
    if (way.manhattanLength() < QGuiApplication::styleHints()->startDragDistance()) return;
    if (startSystemMove()) {
      drag_.reset();  // the desktop has the pointer now
      return;
    }
    drag_->byUs = true;
  }
  setPosition(drag_->window + way);
}

void DesktopWindow::mouseReleaseEvent(QMouseEvent* event) {
  drag_.reset();
  QQuickWindow::mouseReleaseEvent(event);
}

}  // namespace dormel
