#include "ui/qml/ScrollFrame.h"

#include <QQuickWindow>
#include <algorithm>

#include "ui/qml/Pressable.h"

namespace dormel {
namespace {

constexpr double LINE = 40;
constexpr double NOTCH = 72;       // a turn of the wheel by one click, which counts 120
constexpr double MARGIN = 24;      // left around the control that comes into view
constexpr double PAGE_KEEPS = 60;  // of the last page, for the eye to go on from

}  // namespace

ScrollFrame::ScrollFrame(QQuickItem* parent) : QQuickItem(parent) {}

void ScrollFrame::setFlickable(QQuickItem* flickable) {
  if (flickable_ == flickable) return;
  flickable_ = flickable;
  if (flickable_) {
    flickable_->setAcceptedMouseButtons(Qt::NoButton);
    flickable_->installEventFilter(this);
  }
  emit flickableChanged();
}

void ScrollFrame::itemChange(ItemChange change, const ItemChangeData& value) {
  if (change == ItemSceneChange) {
    disconnect(focus_);
    if (QQuickWindow* window = value.window) {
      focus_ = connect(window, &QQuickWindow::activeFocusItemChanged, this, [this, window] { follow(*window); });
    }
  }
  QQuickItem::itemChange(change, value);
}

void ScrollFrame::follow(const QQuickWindow& window) {
  const auto* control = qobject_cast<Pressable*>(window.activeFocusItem());
  // What the mouse is at is in view already, and must not move under it.
  if (control == nullptr || !flickable_ || !control->focusVisible() || !flickable_->isAncestorOf(control)) return;
  const QRectF box = control->mapRectToItem(flickable_, {0, 0, control->width(), control->height()});
  const double underWay = place() - flickable_->property("contentY").toDouble();
  const double above = box.top() - underWay - MARGIN - coveredAbove_;
  const double below = box.bottom() - underWay + MARGIN - flickable_->height();
  if (above < 0) {
    scrollTo(place() + above);
  } else if (below > 0) {
    scrollTo(place() + below);
  }
}

double ScrollFrame::place() const { return gliding_ ? wanted_ : flickable_->property("contentY").toDouble(); }

void ScrollFrame::scrollTo(double y) {
  const double most = flickable_->property("contentHeight").toDouble() - flickable_->height();
  wanted_ = std::clamp(y, 0.0, std::max(most, 0.0));
  emit scrollWanted(wanted_);
}

bool ScrollFrame::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::Wheel || watched != flickable_) return QQuickItem::eventFilter(watched, event);
  const auto& wheel = static_cast<const QWheelEvent&>(*event);
  const double pixels = wheel.pixelDelta().y();
  scrollTo(place() - (pixels != 0 ? pixels : wheel.angleDelta().y() / 120.0 * NOTCH));
  event->accept();
  return true;
}

void ScrollFrame::keyPressEvent(QKeyEvent* event) {
  event->ignore();
  if (!flickable_ || (event->modifiers() & ~Qt::KeypadModifier) != 0) return;
  const double page = flickable_->height() - PAGE_KEEPS;
  double to = place();
  switch (event->key()) {
    case Qt::Key_Up:
      to -= LINE;
      break;
    case Qt::Key_Down:
      to += LINE;
      break;
    case Qt::Key_PageUp:
      to -= page;
      break;
    case Qt::Key_PageDown:
      to += page;
      break;
    case Qt::Key_Home:
      to = 0;
      break;
    case Qt::Key_End:
      to = flickable_->property("contentHeight").toDouble();
      break;
    default:
      return;
  }
  event->accept();
  scrollTo(to);
}

}  // namespace dormel
