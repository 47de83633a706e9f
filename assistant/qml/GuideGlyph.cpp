#include "assistant/qml/GuideGlyph.h"

#include <QPainter>
#include <QPen>
#include <QPolygonF>
#include <vector>

namespace dormel {
namespace {

constexpr double BOX = 16;
constexpr double STROKE = 1.7;

std::vector<QPolygonF> strokes(const QString& name) {
  if (name == QLatin1String("chevron.left")) return {{{{9.75, 3.5}, {5.25, 8}, {9.75, 12.5}}}};
  if (name == QLatin1String("arrow.up")) {
    return {{{{8, 13.5}, {8, 2.75}}}, {{{3.5, 7.25}, {8, 2.75}, {12.5, 7.25}}}};
  }
  return {};
}

}  // namespace

GuideGlyph::GuideGlyph(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setAntialiasing(true);
  setImplicitSize(BOX, BOX);
}

void GuideGlyph::setColor(const QColor& color) {
  if (color == color_) return;
  color_ = color;
  emit colorChanged();
  update();
}

void GuideGlyph::paint(QPainter* painter) {
  painter->scale(width() / BOX, height() / BOX);
  painter->setPen(QPen(color_, STROKE, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  for (const QPolygonF& stroke : strokes(name_)) painter->drawPolyline(stroke);
}

}  // namespace dormel
