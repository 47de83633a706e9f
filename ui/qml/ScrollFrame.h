// The keyboard's and the mouse's side of a Flickable, which is left with touch: scrolls the control that the keyboard
// is at into view, answers the wheel, Page Up, Page Down, Home, End and the vertical arrows, and keeps the mouse's
// buttons out of it, so that a window can be dragged by its background. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QPointer>
#include <QQuickItem>

namespace dormel {

class ScrollFrame : public QQuickItem {
  Q_OBJECT
  QML_ELEMENT
  /// What scrolls; a child of this.
  Q_PROPERTY(QQuickItem* flickable READ flickable WRITE setFlickable NOTIFY flickableChanged)
  /// How much of the frame's upper edge is covered by something else.
  Q_PROPERTY(double coveredAbove MEMBER coveredAbove_ NOTIFY coveredAboveChanged)
  /// Whether it is still on its way to where it was wanted.
  Q_PROPERTY(bool gliding MEMBER gliding_ NOTIFY glidingChanged)

 public:
  explicit ScrollFrame(QQuickItem* parent = nullptr);

  [[nodiscard]] QQuickItem* flickable() const { return flickable_; }
  void setFlickable(QQuickItem* flickable);

 signals:
  void flickableChanged();
  void coveredAboveChanged();
  void glidingChanged();
  /// `y` is where the content's upper edge of the view should go, within what there is.
  void scrollWanted(double y);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void itemChange(ItemChange change, const ItemChangeData& value) override;

 private:
  void follow(const QQuickWindow& window);
  void scrollTo(double y);
  /// Where the view is, or will be in a moment.
  [[nodiscard]] double place() const;

  QPointer<QQuickItem> flickable_;
  QMetaObject::Connection focus_;
  double coveredAbove_ = 0;
  double wanted_ = 0;
  bool gliding_ = false;
};

}  // namespace dormel
