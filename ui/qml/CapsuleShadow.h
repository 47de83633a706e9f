// The soft shadow of a capsule that stands in the item's middle, smaller by the margin on each side. Nothing is painted
// beneath the capsule itself, which may be translucent, and nothing is as dark as half of black: where a window is cut
// by its picture's alpha, the shadow is cut away.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QQuickPaintedItem>

namespace dormel {

class CapsuleShadow : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(double margin MEMBER margin_ CONSTANT)

 public:
  explicit CapsuleShadow(QQuickItem* parent = nullptr);

  void paint(QPainter* painter) override;

 private:
  double margin_;
};

}  // namespace dormel
