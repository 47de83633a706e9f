#include "ui/qml/ProgressRing.h"

#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QQuickWindow>
#include <QtMath>
#include <algorithm>
#include <cmath>
#include <utility>

namespace dormel {
namespace {

// An end that moved further than this around the circle is not followed but painted with everything else.
constexpr double SMALL_STEP = 0.02;

}  // namespace

ProgressRing::ProgressRing(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setAntialiasing(true);
  connect(this, &ProgressRing::restyled, this, &ProgressRing::repaintAll);
}

void ProgressRing::setProgress(double progress) {
  progress = std::clamp(progress, 0.0, 1.0);
  if (progress == progress_) return;
  const double before = std::exchange(progress_, progress);
  emit progressChanged();
  repaintEnd(before);
}

QRectF ProgressRing::circle() const {
  const double half = lineWidth_ / 2;
  return {half, half, width() - lineWidth_, height() - lineWidth_};
}

QPointF ProgressRing::end(double progress) const {
  const QRectF at = circle();
  const double angle = 2 * M_PI * progress;
  return at.center() + QPointF(std::sin(angle) * at.width() / 2, -std::cos(angle) * at.height() / 2);
}

void ProgressRing::geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) {
  QQuickPaintedItem::geometryChange(newGeometry, oldGeometry);
  if (newGeometry.size() != oldGeometry.size()) repaintAll();
}

void ProgressRing::repaintAll() {
  allDirty_ = true;
  update();
}

void ProgressRing::repaintEnd(double before) {
  // The base class takes a part for the whole when a part is asked for last.
  if (allDirty_) return;
  // A part is whole points. Where those are no whole pixels, its edges would be painted over and over.
  const double scale = window() == nullptr ? 1 : window()->effectiveDevicePixelRatio();
  if (std::min(before, progress_) <= 0 || std::abs(progress_ - before) > SMALL_STEP || scale != std::floor(scale)) {
    repaintAll();
    return;
  }
  // The chord's box, the stroke and its round end around it, and a pixel for the antialiasing.
  const double reach = lineWidth_ + 1;
  const QRectF moved = QRectF(end(before), end(progress_)).normalized().adjusted(-reach, -reach, reach, reach);
  update(moved.toAlignedRect() & QRectF(0, 0, width(), height()).toAlignedRect());
}

void ProgressRing::paint(QPainter* painter) {
  allDirty_ = false;
  painter->setBrush(Qt::NoBrush);
  painter->setPen(QPen(trackColor_, lineWidth_, Qt::SolidLine, Qt::FlatCap));
  painter->drawEllipse(circle());
  if (progress_ <= 0) return;
  QPainterPath arc;
  arc.arcMoveTo(circle(), 90);
  arc.arcTo(circle(), 90, -360 * progress_);
  painter->setPen(QPen(color_, lineWidth_, Qt::SolidLine, Qt::RoundCap));
  painter->drawPath(arc);
}

}  // namespace dormel
