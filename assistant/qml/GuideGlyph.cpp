#include "assistant/qml/GuideGlyph.h"

#include <QPainter>
#include <QPen>
#include <QPointF>
#include <vector>

namespace dormel {
namespace {

constexpr double BOX = 16;
constexpr double STROKE = 1.7;

using Stroke = std::vector<QPointF>;

std::vector<Stroke> strokes(const QString& name) {
  if (name == QLatin1String("chevron.left")) return {Stroke{{9.75, 3.5}, {5.25, 8}, {9.75, 12.5}}};
  if (name == QLatin1String("arrow.up")) {
    return {Stroke{{8, 13.5}, {8, 2.75}}, Stroke{{3.5, 7.25}, {8, 2.75}, {12.5, 7.25}}};
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
  for (const Stroke& stroke : strokes(name_)) painter->drawPolyline(stroke.data(), static_cast<int>(stroke.size()));
}

}  // namespace dormel
