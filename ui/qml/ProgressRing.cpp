#include "ui/qml/ProgressRing.h"

#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <algorithm>

namespace dormel {

ProgressRing::ProgressRing(QQuickItem* parent) : QQuickPaintedItem(parent) { setAntialiasing(true); }

void ProgressRing::setProgress(double progress) {
  progress = std::clamp(progress, 0.0, 1.0);
  if (progress == progress_) return;
  progress_ = progress;
  emit progressChanged();
  update();
}

void ProgressRing::setColor(const QColor& color) {
  if (color == color_) return;
  color_ = color;
  emit colorChanged();
  update();
}

void ProgressRing::setTrackColor(const QColor& color) {
  if (color == trackColor_) return;
  trackColor_ = color;
  emit trackColorChanged();
  update();
}

void ProgressRing::setLineWidth(double width) {
  if (width == lineWidth_) return;
  lineWidth_ = width;
  emit lineWidthChanged();
  update();
}

void ProgressRing::paint(QPainter* painter) {
  const double half = lineWidth_ / 2;
  const QRectF circle(half, half, width() - lineWidth_, height() - lineWidth_);
  painter->setBrush(Qt::NoBrush);
  painter->setPen(QPen(trackColor_, lineWidth_, Qt::SolidLine, Qt::FlatCap));
  painter->drawEllipse(circle);
  if (progress_ <= 0) return;
  QPainterPath arc;
  arc.arcMoveTo(circle, 90);
  arc.arcTo(circle, 90, -360 * progress_);
  painter->setPen(QPen(color_, lineWidth_, Qt::SolidLine, Qt::RoundCap));
  painter->drawPath(arc);
}

}  // namespace dormel
