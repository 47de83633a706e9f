#include "ui/qml/Pressable.h"

#include <QAccessible>
#include <utility>

namespace dormel {

Pressable::Pressable(QQuickItem* parent) : QQuickItem(parent) {
  setAcceptedMouseButtons(Qt::LeftButton);
  setAcceptHoverEvents(true);
  setActiveFocusOnTab(true);
}

void Pressable::click() {
  if (isEnabled()) emit clicked();
}

void Pressable::setDown(bool down) {
  if (std::exchange(down_, down) != down) emit downChanged();
}

void Pressable::setHovered(bool hovered) {
  if (std::exchange(hovered_, hovered) != hovered) emit hoveredChanged();
}

void Pressable::mousePressEvent(QMouseEvent* event) {
  if (activeFocusOnTab()) forceActiveFocus(Qt::MouseFocusReason);
  if (std::exchange(byKeyboard_, false)) emit focusVisibleChanged();
  setDown(true);
  event->accept();
}

void Pressable::mouseMoveEvent(QMouseEvent* event) { setDown(contains(event->position())); }

void Pressable::mouseReleaseEvent(QMouseEvent* /*event*/) {
  const bool counts = down_;
  setDown(false);
  if (counts) click();
}

void Pressable::hoverEnterEvent(QHoverEvent* /*event*/) { setHovered(true); }

void Pressable::hoverLeaveEvent(QHoverEvent* /*event*/) { setHovered(false); }

void Pressable::keyPressEvent(QKeyEvent* event) {
  event->ignore();
  if (event->isAutoRepeat() || (event->modifiers() & ~Qt::KeypadModifier) != 0) return;
  switch (event->key()) {
    case Qt::Key_Space:  // counts when it is let go, as under the pointer
      setDown(true);
      event->accept();
      break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      event->accept();
      click();
      break;
    default:
      break;
  }
}

void Pressable::keyReleaseEvent(QKeyEvent* event) {
  event->ignore();
  if (event->key() != Qt::Key_Space || event->isAutoRepeat() || !down_) return;
  event->accept();
  setDown(false);
  click();
}

void Pressable::focusInEvent(QFocusEvent* event) {
  QQuickItem::focusInEvent(event);  // tells assistive tools
  // A window that comes back to the front brings its ring back, and so does a list that closes.
  if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason) {
    byKeyboard_ = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
  }
  emit focusVisibleChanged();
}

void Pressable::focusOutEvent(QFocusEvent* /*event*/) {
  setDown(false);
  emit focusVisibleChanged();
}

void Pressable::itemChange(ItemChange change, const ItemChangeData& value) {
  const bool outOfReach = (change == ItemEnabledHasChanged || change == ItemVisibleHasChanged) && !value.boolValue;
  if (outOfReach) {
    setDown(false);
    setHovered(false);
  }
  if (change == ItemEnabledHasChanged && QAccessible::isActive()) {
    QAccessible::State changed;
    changed.disabled = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
  }
  QQuickItem::itemChange(change, value);
}

}  // namespace dormel
