// A ring that fills clockwise from the top: a full track below, an arc with round ends above. All of its stroke lies
// inside the item.
//
// Made for a ring that grows by less than a pixel per frame: only what its end has moved over is painted afresh, where
// a point is a whole number of pixels.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QQuickPaintedItem>

namespace dormel {

class ProgressRing : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(double progress READ progress WRITE setProgress NOTIFY progressChanged)  // 0 to 1
  Q_PROPERTY(QColor color MEMBER color_ NOTIFY restyled)
  Q_PROPERTY(QColor trackColor MEMBER trackColor_ NOTIFY restyled)
  Q_PROPERTY(double lineWidth MEMBER lineWidth_ NOTIFY restyled)

 public:
  explicit ProgressRing(QQuickItem* parent = nullptr);

  [[nodiscard]] double progress() const { return progress_; }
  void setProgress(double progress);
  /// Paints all of it, or as much as the painter's clip lets through.
  void paint(QPainter* painter) override;

 signals:
  void progressChanged();
  void restyled();

 protected:
  void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;

 private:
  [[nodiscard]] QRectF circle() const;
  [[nodiscard]] QPointF end(double progress) const;
  void repaintAll();
  void repaintEnd(double before);

  double progress_ = 0;
  QColor color_ = Qt::white;
  QColor trackColor_ = Qt::transparent;
  double lineWidth_ = 1;
  bool allDirty_ = true;  // everything is going to be painted already
};

}  // namespace dormel
