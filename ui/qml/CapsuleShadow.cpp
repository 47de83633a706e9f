#include "ui/qml/CapsuleShadow.h"

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "platform/common/Shadow.h"

namespace dormel {
namespace {

constexpr double DROP = 5;    // how far it lies below its capsule
constexpr double SPREAD = 7;  // the blur's standard deviation; the margin holds what can be seen of it
constexpr double DARKEST = 0.42;

/// How far a point is outside of a capsule; negative within.
double distance(const QPointF& point, const QRectF& capsule) {
  const double radius = std::min(capsule.width(), capsule.height()) / 2;
  const double x = std::max(0.0, std::abs(point.x() - capsule.center().x()) - capsule.width() / 2 + radius);
  const double y = std::max(0.0, std::abs(point.y() - capsule.center().y()) - capsule.height() / 2 + radius);
  return std::hypot(x, y) - radius;
}

}  // namespace

CapsuleShadow::CapsuleShadow(QQuickItem* parent) : QQuickPaintedItem(parent), margin_(SHADOW_MARGIN) {
  setAntialiasing(true);
}

void CapsuleShadow::paint(QPainter* painter) {
  const double ratio = painter->device()->devicePixelRatio();
  const QRectF capsule = QRectF(0, 0, width(), height()).adjusted(margin_, margin_, -margin_, -margin_);
  QImage shadow(QSizeF(width() * ratio, height() * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
  const QRectF dropped = capsule.translated(0, DROP);
  for (int y = 0; y < shadow.height(); ++y) {
    auto* line = reinterpret_cast<QRgb*>(shadow.scanLine(y));
    for (int x = 0; x < shadow.width(); ++x) {
      const double away = distance(QPointF(x + 0.5, y + 0.5) / ratio, dropped);
      const double dark = DARKEST * std::erfc(away / (SPREAD * std::numbers::sqrt2)) / 2;
      line[x] = qRgba(0, 0, 0, static_cast<int>(std::lround(255 * dark)));
    }
  }
  shadow.setDevicePixelRatio(ratio);
  QPainter cut(&shadow);
  cut.setRenderHint(QPainter::Antialiasing);
  cut.setCompositionMode(QPainter::CompositionMode_DestinationOut);
  cut.setPen(Qt::NoPen);
  cut.setBrush(Qt::black);
  cut.drawRoundedRect(capsule, capsule.height() / 2, capsule.height() / 2);
  cut.end();
  painter->drawImage(QPointF(0, 0), shadow);
}

}  // namespace dormel
