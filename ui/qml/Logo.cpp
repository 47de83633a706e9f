#include "ui/qml/Logo.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPen>
#include <QPixmap>
#include <QTransform>
#include <algorithm>
#include <array>
#include <cmath>

namespace dormel {
namespace {

constexpr QPointF START{18.53, 3.75};
struct Curve {
  QPointF leaving;
  QPointF arriving;
  QPointF end;
};
// Down and round the outside from the upper tip to the lower one, and back along the inside, not quite to where it
// began: the lid is about to shut.
constexpr std::array<Curve, 5> CURVES{{{{21.46, 6.58}, {22.28, 10.95}, {20.58, 14.66}},
                                       {{18.88, 18.36}, {15.02, 20.59}, {10.96, 20.21}},
                                       {{6.91, 19.83}, {3.53, 16.93}, {2.54, 12.98}},
                                       {{5.42, 14.96}, {9.11, 15.34}, {12.33, 13.97}},
                                       {{15.55, 12.60}, {17.84, 9.68}, {18.41, 6.24}}}};

constexpr double TILE_CORNER = 0.25;  // of the width
constexpr double TILE_MARK = 0.62;

QPainterPath makePath() {
  QPainterPath path(START);
  for (const Curve& curve : CURVES) path.cubicTo(curve.leaving, curve.arriving, curve.end);
  return path;
}

QString text(const QPointF& point) {
  return QString::number(point.x(), 'f', 2) + QLatin1Char(' ') + QString::number(point.y(), 'f', 2);
}

}  // namespace

const QPainterPath& Logo::path() {
  static const QPainterPath path = makePath();
  return path;
}

QString Logo::svgPath() {
  QString svg = QLatin1Char('M') + text(START);
  for (const Curve& curve : CURVES) {
    svg += QLatin1Char('C') + text(curve.leaving) + QLatin1Char(' ') + text(curve.arriving) + QLatin1Char(' ') +
           text(curve.end);
  }
  return svg;
}

void Logo::paintMark(QPainter& painter, const QRectF& box, const QColor& color, double drawn, double stroke) {
  if (drawn <= 0) return;
  const double scale = std::min(box.width(), box.height()) / BOX;
  QPen pen(color, stroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
  if (drawn < 1) {
    // Dashes are measured in widths of the pen: one as long as what is drawn, then nothing.
    const double length = path().length() / stroke;
    pen.setDashPattern({drawn * length, 2 * length});
  }
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(box.center());
  painter.scale(scale, scale);
  painter.translate(-BOX / 2, -BOX / 2);
  painter.strokePath(path(), pen);
  painter.restore();
}

Logo::Logo(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setAntialiasing(true);
  setImplicitSize(BOX, BOX);
  connect(this, &Logo::changed, this, [this] { update(); });
}

void Logo::paint(QPainter* painter) { paintMark(*painter, QRectF(0, 0, width(), height()), color_, drawn_, stroke_); }

AppTile::AppTile(QQuickItem* parent) : QQuickPaintedItem(parent) { setAntialiasing(true); }

void AppTile::paintTile(QPainter& painter, const QRectF& box) {
  const double corner = box.width() * TILE_CORNER;
  const double hairline = std::max(box.width() / 64, 0.5);
  QLinearGradient night(box.topLeft(), box.bottomLeft());
  night.setColorAt(0, QColor(42, 42, 47));
  night.setColorAt(1, QColor(16, 16, 18));
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(night);
  painter.drawRoundedRect(box, corner, corner);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(QColor(255, 255, 255, 30), hairline));
  const double half = hairline / 2;
  painter.drawRoundedRect(box.adjusted(half, half, -half, -half), corner - half, corner - half);
  painter.restore();
  const double margin = box.width() * (1 - TILE_MARK) / 2;
  Logo::paintMark(painter, box.adjusted(margin, margin, -margin, -margin), Qt::white);
}

QIcon AppTile::icon() {
  QIcon icon;
  for (const int size : {16, 24, 32, 48, 64, 128, 256}) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paintTile(painter, QRectF(0, 0, size, size));
    painter.end();
    icon.addPixmap(pixmap);
  }
  return icon;
}

void AppTile::paint(QPainter* painter) { paintTile(*painter, QRectF(0, 0, width(), height())); }

}  // namespace dormel
