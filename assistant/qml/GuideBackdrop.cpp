#include "assistant/qml/GuideBackdrop.h"

#include <QPainter>
#include <QPainterPath>
#include <QPen>

#include "ui/qml/AppPalette.h"

namespace dormel {
namespace {

constexpr int OPACITY = 240;  // of 255: what stands behind is felt, not read
constexpr double HAIRLINE = 0.5;
constexpr double HAIRLINE_OPACITY = 0.18;

}  // namespace

GuideBackdrop::GuideBackdrop(QQuickItem* parent) : QQuickPaintedItem(parent) { setAntialiasing(true); }

void GuideBackdrop::paint(QPainter* painter) {
  const QRectF box(0, 0, width(), height());
  QColor ground = AppPalette::raised();
  ground.setAlpha(OPACITY);
  QPainterPath shape;
  shape.addRoundedRect(box, RADIUS, RADIUS);
  painter->fillPath(shape, ground);
  const double half = HAIRLINE / 2;
  painter->setPen(QPen(AppPalette::white(HAIRLINE_OPACITY), HAIRLINE));
  painter->setBrush(Qt::NoBrush);
  painter->drawRoundedRect(box.adjusted(half, half, -half, -half), RADIUS - half, RADIUS - half);
}

}  // namespace dormel
