// Small signs drawn as strokes with round ends, like the mark.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QQuickPaintedItem>

namespace dormel {

class Glyph : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(Shape shape MEMBER shape_ NOTIFY changed)
  Q_PROPERTY(QColor color MEMBER color_ NOTIFY changed)
  /// Of the stroke, in points.
  Q_PROPERTY(double lineWidth MEMBER lineWidth_ NOTIFY changed)

 public:
  enum Shape { ChevronLeft, ShortChevronLeft, ArrowUp, Check, Lock };
  Q_ENUM(Shape)

  explicit Glyph(QQuickItem* parent = nullptr);

  void paint(QPainter* painter) override;

 signals:
  void changed();

 private:
  Shape shape_ = Check;
  QColor color_ = Qt::white;
  double lineWidth_ = 1.6;
};

}  // namespace dormel
