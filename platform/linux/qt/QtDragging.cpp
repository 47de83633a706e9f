#include "platform/linux/qt/QtDragging.h"

#include <QCursor>
#include <QDrag>
#include <QGuiApplication>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QQuickItemGrabResult>
#include <QRasterWindow>
#include <QVariantAnimation>
#include <utility>

#include "platform/linux/qt/DesktopWindow.h"
#include "platform/linux/qt/ScreenGeometry.h"

namespace dormel {
namespace {

constexpr int FLIGHT_MILLISECONDS = 300;

/// What file managers and everything else that takes files ask for.
constexpr const char* URI_LIST = "text/uri-list";

/// The offer; the data itself is asked of the logic only when a receiver wants it.
class OfferedData final : public QMimeData {
 public:
  explicit OfferedData(DragItem item) : item_(std::move(item)) {}

  [[nodiscard]] QStringList formats() const override {
    for (const std::string& type : item_.types) {
      if (type == FILE_URL_TYPE) return {QString::fromLatin1(URI_LIST)};
    }
    return {};
  }
  [[nodiscard]] bool hasFormat(const QString& type) const override { return formats().contains(type); }

 protected:
  [[nodiscard]] QVariant retrieveData(const QString& type, QMetaType /*preferred*/) const override {
    if (!hasFormat(type)) return {};
    const auto address = item_.provide(FILE_URL_TYPE);
    return address ? QVariant(QByteArray::fromStdString(*address + "\r\n")) : QVariant();
  }

 private:
  DragItem item_;
};

DesktopWindow* pressedWindow(const QPoint& at) {
  for (QWindow* window : QGuiApplication::topLevelWindows()) {
    auto* ours = qobject_cast<DesktopWindow*>(window);
    if (ours != nullptr && ours->isVisible() && ours->geometry().contains(at)) return ours;
  }
  return nullptr;
}

/// The picture on its way home.
class FlyingPicture final : public QRasterWindow {
 public:
  explicit FlyingPicture(QPixmap picture) : picture_(std::move(picture)) {
    setFlags(Qt::Window | Qt::BypassWindowManagerHint | Qt::FramelessWindowHint | Qt::WindowTransparentForInput |
             Qt::WindowDoesNotAcceptFocus);
    QSurfaceFormat format = this->format();
    format.setAlphaBufferSize(8);
    setFormat(format);
    resize(picture_.deviceIndependentSize().toSize());
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawPixmap(0, 0, picture_);
  }

 private:
  QPixmap picture_;
};

}  // namespace

struct QtDragging::Session {
  DragItem item;
  std::function<void(DragOperation)> onEnd;
  QPoint home;  // the picture's corner
  QPoint grip;  // where in the picture the pointer has hold of it
  QPointer<DesktopWindow> held;
  QPixmap picture;
  LoadedScene scene;  // what the picture is taken of
  QSharedPointer<QQuickItemGrabResult> taken;
  std::unique_ptr<FlyingPicture> flying;
  QVariantAnimation flight;
};

QtDragging::QtDragging(std::shared_ptr<SceneLoader> stage, const Screens& screens)
    : stage_(std::move(stage)), screens_(screens) {}

QtDragging::~QtDragging() = default;

bool QtDragging::begin(DragItem item, std::function<void(DragOperation)> onEnd) {
  if (session_ || !(QGuiApplication::mouseButtons() & Qt::LeftButton)) return false;
  session_ = std::make_unique<Session>();
  Session& s = *session_;
  s.item = std::move(item);
  s.onEnd = std::move(onEnd);
  const QRectF frame = toolkitGeometry(s.item.frame, screens_);
  s.home = frame.topLeft().toPoint();
  s.held = pressedWindow(frame.center().toPoint());
  s.grip = (s.held ? s.held->lastPress() : QCursor::pos()) - s.home;
  s.scene = s.held ? stage_->load(s.item.picture) : LoadedScene{};
  if (s.scene.root) {
    // In the window that is pressed, so that what draws that draws this; but out of sight.
    s.scene.root->setParentItem(s.held->contentItem());
    s.scene.root->setPosition({frame.width() * -2, 0});
    s.scene.root->setSize(frame.size());
    s.taken = s.scene.root->grabToImage((frame.size() * s.held->devicePixelRatio()).toSize());
  }
  if (!s.taken) {
    session_.reset();
    return false;
  }
  // A window that goes before that takes no picture any more.
  connect(s.held, &QObject::destroyed, this, [this] {
    if (session_ && session_->picture.isNull()) end(DragOperation::none);
  });
  // Not from a turn of the main loop, which cannot be entered once more.
  connect(
      s.taken.get(), &QQuickItemGrabResult::ready, this, [this] { drag(); }, Qt::QueuedConnection);
  return true;
}

void QtDragging::drag() {
  Session& s = *session_;
  s.picture = QPixmap::fromImage(s.taken->image());
  if (s.held) s.picture.setDevicePixelRatio(s.held->devicePixelRatio());
  s.scene.root.reset();
  if (!(QGuiApplication::mouseButtons() & Qt::LeftButton)) {
    end(DragOperation::none);  // a mere click
    return;
  }
  // Nothing else gives us Escape: the window that was pressed takes no focus.
  if (s.held) s.held->setKeyboardGrabEnabled(true);
  auto* drag = new QDrag(this);  // the toolkit deletes it
  drag->setMimeData(new OfferedData(s.item));
  drag->setPixmap(s.picture);
  drag->setHotSpot(s.grip);
  const Qt::DropAction done = drag->exec(Qt::CopyAction);
  if (s.held) s.held->setKeyboardGrabEnabled(false);
  if (done == Qt::CopyAction) {
    end(DragOperation::copy);
  } else {
    flyHome(QCursor::pos() - s.grip);
  }
}

void QtDragging::flyHome(const QPoint& from) {
  Session& s = *session_;
  if (from == s.home) {
    end(DragOperation::none);
    return;
  }
  s.flying = std::make_unique<FlyingPicture>(s.picture);
  s.flying->setPosition(from);
  s.flying->show();
  s.flight.setDuration(FLIGHT_MILLISECONDS);
  s.flight.setEasingCurve(QEasingCurve::InOutSine);
  s.flight.setStartValue(from);
  s.flight.setEndValue(s.home);
  connect(&s.flight, &QVariantAnimation::valueChanged, this, [this](const QVariant& place) {
    if (session_ && session_->flying) session_->flying->setPosition(place.toPoint());
  });
  connect(
      &s.flight, &QVariantAnimation::finished, this, [this] { end(DragOperation::none); }, Qt::QueuedConnection);
  s.flight.start();
}

void QtDragging::end(DragOperation operation) {
  if (!session_) return;
  // Queued: the window that waits beneath the picture draws its row first.
  QMetaObject::invokeMethod(
      this,
      [session = std::shared_ptr<Session>(std::move(session_)), operation] {
        if (session->onEnd) session->onEnd(operation);
      },
      Qt::QueuedConnection);
}

}  // namespace dormel
