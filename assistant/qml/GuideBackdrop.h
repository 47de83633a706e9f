// The guide's ground: dark, a little translucent, with a hairline of half a point. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QQuickPaintedItem>

namespace dormel {

class GuideBackdrop : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT

 public:
  static constexpr double RADIUS = 18;

  explicit GuideBackdrop(QQuickItem* parent = nullptr);
  void paint(QPainter* painter) override;
};

}  // namespace dormel
