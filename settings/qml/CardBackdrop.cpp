#include "settings/qml/CardBackdrop.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPen>
#include <QTransform>
#include <algorithm>
#include <array>

#include "ui/qml/AppPalette.h"

namespace dormel {
namespace {

constexpr double BACKGROUND_OPACITY = 0.62;
constexpr double LIGHT_ABOVE = 0.22;
constexpr double LIGHT_BELOW = 0.05;
const QColor MATERIAL(34, 34, 38, 204);

// A corner of radius 1 in the origin, its edges along the axes: it leaves the horizontal edge at REACH and is the
// mirror of itself across the diagonal.
constexpr double REACH = 1.52866498;
struct Curve {
  QPointF leaving;
  QPointF arriving;
  QPointF end;
};
constexpr std::array<Curve, 3> CORNER{{{{1.08849296, 0}, {0.86840694, 0}, {0.63149379, 0.07491139}},
                                       {{0.37282383, 0.16905956}, {0.16905956, 0.37282383}, {0.07491139, 0.63149379}},
                                       {{0, 0.86840694}, {0, 1.08849296}, {0, REACH}}}};

QPainterPath card(const QRectF& box, double radius) {
  radius = std::min(radius, std::min(box.width(), box.height()) / 2 / REACH);
  QPainterPath path;
  // Counter-clockwise from the top left corner; each next corner is the same curve a quarter turn on.
  const std::array<QPointF, 4> corners{box.topLeft(), box.bottomLeft(), box.bottomRight(), box.topRight()};
  for (std::size_t i = 0; i < corners.size(); ++i) {
    QTransform place;
    place.translate(corners.at(i).x(), corners.at(i).y());
    place.rotate(-90.0 * static_cast<double>(i));
    place.scale(radius, radius);
    const QPointF start = place.map(QPointF(REACH, 0));
    if (i == 0) {
      path.moveTo(start);
    } else {
      path.lineTo(start);
    }
    for (const Curve& curve : CORNER) {
      path.cubicTo(place.map(curve.leaving), place.map(curve.arriving), place.map(curve.end));
    }
  }
  path.closeSubpath();
  return path;
}

}  // namespace

CardBackdrop::CardBackdrop(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setAntialiasing(true);
  connect(this, &CardBackdrop::radiusChanged, this, [this] { update(); });
}

void CardBackdrop::paint(QPainter* painter) {
  const QRectF box(0, 0, width(), height());
  const QPainterPath shape = card(box, radius_);
  painter->fillPath(shape, MATERIAL);
  QColor background = AppPalette::background();
  background.setAlphaF(BACKGROUND_OPACITY);
  painter->fillPath(shape, background);
  QLinearGradient light(box.topLeft(), box.bottomLeft());
  light.setColorAt(0, AppPalette::white(LIGHT_ABOVE));
  light.setColorAt(1, AppPalette::white(LIGHT_BELOW));
  painter->strokePath(card(box.adjusted(0.5, 0.5, -0.5, -0.5), radius_ - 0.5), QPen(light, 1));
}

}  // namespace dormel
