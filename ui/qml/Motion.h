// The curves that everything moves by, as cubic Beziers from (0, 0) to (1, 1). Slow, and without a bounce.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QObject>
#include <QVariantList>
#include <algorithm>

namespace dormel {

class Motion : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON
  Q_PROPERTY(QVariantList easeIn READ easeIn CONSTANT)
  Q_PROPERTY(QVariantList easeOut READ easeOut CONSTANT)
  Q_PROPERTY(QVariantList easeInOut READ easeInOut CONSTANT)
  Q_PROPERTY(QVariantList reveal READ reveal CONSTANT)
  /// The user wants things to keep still: nothing drifts, grows or blurs, and what comes or goes fades by `duration`.
  Q_PROPERTY(bool isReduced READ isReduced CONSTANT)

 public:
  /// Before any scene is made; the panels of a lock never are.
  static void reduce(bool on) { reduced_ = on; }
  [[nodiscard]] static bool isReduced() { return reduced_; }
  /// How long a change takes that would take so many milliseconds.
  Q_INVOKABLE [[nodiscard]] static int duration(int milliseconds) {
    return reduced_ ? std::min(milliseconds, REDUCED) : milliseconds;
  }

  [[nodiscard]] QVariantList easeIn() const { return {0.42, 0.0, 1.0, 1.0, 1.0, 1.0}; }
  [[nodiscard]] QVariantList easeOut() const { return {0.0, 0.0, 0.58, 1.0, 1.0, 1.0}; }
  [[nodiscard]] QVariantList easeInOut() const { return {0.42, 0.0, 0.58, 1.0, 1.0, 1.0}; }
  /// Out at once and long in coming to rest: what comes up out of the dark.
  [[nodiscard]] QVariantList reveal() const { return {0.2, 0.7, 0.3, 1.0, 1.0, 1.0}; }

 private:
  static constexpr int REDUCED = 200;
  static inline bool reduced_ = false;
};

}  // namespace dormel
