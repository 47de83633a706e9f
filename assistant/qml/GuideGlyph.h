// The guide's two symbols, drawn with the same round pen as the mark. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QQuickPaintedItem>
#include <QString>

namespace dormel {

class GuideGlyph : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  /// "chevron.left" or "arrow.up"
  Q_PROPERTY(QString name MEMBER name_)
  Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)

 public:
  explicit GuideGlyph(QQuickItem* parent = nullptr);

  [[nodiscard]] QColor color() const { return color_; }
  void setColor(const QColor& color);
  void paint(QPainter* painter) override;

 signals:
  void colorChanged();

 private:
  QString name_;
  QColor color_ = Qt::white;
};

}  // namespace dormel
