// The curves that everything moves by, as cubic Beziers from (0, 0) to (1, 1). Slow, and without a bounce.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QObject>
#include <QVariantList>

namespace dormel {

class Motion : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON
  Q_PROPERTY(QVariantList easeIn READ easeIn CONSTANT)
  Q_PROPERTY(QVariantList easeOut READ easeOut CONSTANT)
  Q_PROPERTY(QVariantList easeInOut READ easeInOut CONSTANT)
  Q_PROPERTY(QVariantList reveal READ reveal CONSTANT)

 public:
  [[nodiscard]] QVariantList easeIn() const { return {0.42, 0.0, 1.0, 1.0, 1.0, 1.0}; }
  [[nodiscard]] QVariantList easeOut() const { return {0.0, 0.0, 0.58, 1.0, 1.0, 1.0}; }
  [[nodiscard]] QVariantList easeInOut() const { return {0.42, 0.0, 0.58, 1.0, 1.0, 1.0}; }
  /// Out at once and long in coming to rest: what comes up out of the dark.
  [[nodiscard]] QVariantList reveal() const { return {0.2, 0.7, 0.3, 1.0, 1.0, 1.0}; }
};

}  // namespace dormel
