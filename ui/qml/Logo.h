// The program's mark: one continuous stroke, a crescent that closes like an eyelid. It can draw itself.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QIcon>
#include <QPainterPath>
#include <QQuickPaintedItem>
#include <QString>

namespace dormel {

class Logo : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(QColor color MEMBER color_ NOTIFY changed)
  /// How much of the stroke is drawn, 0 to 1.
  Q_PROPERTY(double drawn MEMBER drawn_ NOTIFY changed)
  /// The width of the stroke in a box of 24 by 24.
  Q_PROPERTY(double stroke MEMBER stroke_ NOTIFY changed)

 public:
  explicit Logo(QQuickItem* parent = nullptr);

  /// The stroke's middle line in a box of 24 by 24, and as a path of SVG.
  [[nodiscard]] static const QPainterPath& path();
  [[nodiscard]] static QString svgPath();
  static constexpr double BOX = 24;
  static constexpr double STROKE = 1.6;  ///< in that box

  /// Paints the first `drawn` of the stroke into `box`.
  static void paintMark(QPainter& painter, const QRectF& box, const QColor& color, double drawn = 1,
                        double stroke = STROKE);

  void paint(QPainter* painter) override;

 signals:
  void changed();

 private:
  QColor color_ = Qt::white;
  double drawn_ = 1;
  double stroke_ = STROKE;
};

/// The mark on its dark tile, as the program's icon shows it. Corners are a quarter of the width.
class AppTile : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT

 public:
  explicit AppTile(QQuickItem* parent = nullptr);

  static void paintTile(QPainter& painter, const QRectF& box);
  [[nodiscard]] static QIcon icon();

  void paint(QPainter* painter) override;
};

}  // namespace dormel
