// What every button is underneath: pressed by the pointer, by Space, Return or Enter, or by an assistive tool; reached
// by Tab. It draws nothing. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QQuickItem>

namespace dormel {

class Pressable : public QQuickItem {
  Q_OBJECT
  QML_ELEMENT
  /// The pointer is over it.
  Q_PROPERTY(bool hovered READ hovered NOTIFY hoveredChanged)
  /// It is being pressed, and letting go now would count.
  Q_PROPERTY(bool down READ down NOTIFY downChanged)
  /// It has the focus and got it by the keyboard: the only case in which a ring is to be seen.
  Q_PROPERTY(bool focusVisible READ focusVisible NOTIFY focusVisibleChanged)

 public:
  explicit Pressable(QQuickItem* parent = nullptr);

  [[nodiscard]] bool hovered() const { return hovered_; }
  [[nodiscard]] bool down() const { return down_; }
  [[nodiscard]] bool focusVisible() const { return byKeyboard_ && hasActiveFocus(); }

  /// Presses it; does nothing while it is disabled.
  Q_INVOKABLE void click();

 signals:
  void clicked();
  void hoveredChanged();
  void downChanged();
  void focusVisibleChanged();

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseUngrabEvent() override { setDown(false); }
  void hoverEnterEvent(QHoverEvent* event) override;
  void hoverLeaveEvent(QHoverEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void itemChange(ItemChange change, const ItemChangeData& value) override;

 private:
  void setDown(bool down);
  void setHovered(bool hovered);

  bool hovered_ = false;
  bool down_ = false;
  bool byKeyboard_ = false;
};

}  // namespace dormel
