// A ring that fills clockwise from the top: a full track below, an arc with round ends above. All of its stroke lies
// inside the item.
#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

namespace dormel {

class ProgressRing : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(double progress READ progress WRITE setProgress NOTIFY progressChanged)  // 0 to 1
  Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
  Q_PROPERTY(QColor trackColor READ trackColor WRITE setTrackColor NOTIFY trackColorChanged)
  Q_PROPERTY(double lineWidth READ lineWidth WRITE setLineWidth NOTIFY lineWidthChanged)

 public:
  explicit ProgressRing(QQuickItem* parent = nullptr);

  [[nodiscard]] double progress() const { return progress_; }
  void setProgress(double progress);
  [[nodiscard]] QColor color() const { return color_; }
  void setColor(const QColor& color);
  [[nodiscard]] QColor trackColor() const { return trackColor_; }
  void setTrackColor(const QColor& color);
  [[nodiscard]] double lineWidth() const { return lineWidth_; }
  void setLineWidth(double width);

  void paint(QPainter* painter) override;

 signals:
  void progressChanged();
  void colorChanged();
  void trackColorChanged();
  void lineWidthChanged();

 private:
  double progress_ = 0;
  QColor color_ = Qt::white;
  QColor trackColor_ = Qt::transparent;
  double lineWidth_ = 1;
};

}  // namespace dormel
