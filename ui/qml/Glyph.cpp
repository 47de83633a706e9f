#include "ui/qml/Glyph.h"

#include <QPainter>
#include <QPainterPath>
#include <QPen>

namespace dormel {
namespace {

/// In a box of 24 by 24.
QPainterPath pathOf(Glyph::Shape shape) {
  QPainterPath path;
  switch (shape) {
    case Glyph::ChevronLeft:
      path.moveTo(16, 3);
      path.lineTo(7, 12);
      path.lineTo(16, 21);
      break;
    case Glyph::ShortChevronLeft:
      path.moveTo(14.625, 5.25);
      path.lineTo(7.875, 12);
      path.lineTo(14.625, 18.75);
      break;
    case Glyph::ArrowUp:
      path.moveTo(12, 20.25);
      path.lineTo(12, 4.125);
      path.moveTo(5.25, 10.875);
      path.lineTo(12, 4.125);
      path.lineTo(18.75, 10.875);
      break;
    case Glyph::Check:
      path.moveTo(4, 12.5);
      path.lineTo(9.5, 18);
      path.lineTo(20, 6.5);
      break;
    case Glyph::Lock:
      path.addRoundedRect(QRectF(4, 10, 16, 11.5), 2.5, 2.5);
      path.moveTo(7.5, 10);
      path.lineTo(7.5, 7);
      path.arcTo(QRectF(7.5, 2.5, 9, 9), 180, -180);
      path.lineTo(16.5, 10);
      path.moveTo(12, 14.5);
      path.lineTo(12, 17);
      break;
  }
  return path;
}

}  // namespace

Glyph::Glyph(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setAntialiasing(true);
  setImplicitSize(24, 24);
  connect(this, &Glyph::changed, this, [this] { update(); });
}

void Glyph::paint(QPainter* painter) {
  const double scale = width() / 24;
  if (scale <= 0) return;
  painter->scale(scale, scale);
  painter->strokePath(pathOf(shape_), QPen(color_, lineWidth_ / scale, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

}  // namespace dormel
