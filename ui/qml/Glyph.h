// Small signs drawn as strokes with round ends, like the mark.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QQuickPaintedItem>

namespace dormel {

class Glyph : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(Shape shape READ shape WRITE setShape NOTIFY shapeChanged)
  Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
  /// Of the stroke, in points.
  Q_PROPERTY(double lineWidth READ lineWidth WRITE setLineWidth NOTIFY lineWidthChanged)

 public:
  enum Shape { ChevronLeft, Check, Person };
  Q_ENUM(Shape)

  explicit Glyph(QQuickItem* parent = nullptr);

  [[nodiscard]] Shape shape() const { return shape_; }
  void setShape(Shape shape);
  [[nodiscard]] QColor color() const { return color_; }
  void setColor(const QColor& color);
  [[nodiscard]] double lineWidth() const { return lineWidth_; }
  void setLineWidth(double width);

  void paint(QPainter* painter) override;

 signals:
  void shapeChanged();
  void colorChanged();
  void lineWidthChanged();

 private:
  Shape shape_ = Check;
  QColor color_ = Qt::white;
  double lineWidth_ = 1.6;
};

}  // namespace dormel
