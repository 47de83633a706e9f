// A floating card's ground: a dark translucent material under the program's background colour, and a hairline that
// catches light from above. Its corners run into the edges without a break in curvature.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QPainterPath>
#include <QQuickPaintedItem>

namespace dormel {

class CardBackdrop : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(double radius MEMBER radius_ NOTIFY radiusChanged)

 public:
  explicit CardBackdrop(QQuickItem* parent = nullptr);

  void paint(QPainter* painter) override;

 signals:
  void radiusChanged();

 private:
  double radius_ = 0;
};

}  // namespace dormel
