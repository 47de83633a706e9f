// The product's typeface: Inter, its Display cut for large sizes. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QFont>
#include <QObject>

#include "platform/linux/qt/DrawingServices.h"

namespace dormel {

class Typeface : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON

 public:
  /// Makes the fonts of the bundle known to this process. Without them the desktop's Inter, or failing that its
  /// sans serif, takes over: that is said in one line on standard error and is no reason to stop.
  static void load(const DrawingServices& services);

  /// The font of `size` points in one of the weights that the bundle carries: QFont::Light, Medium and DemiBold, and
  /// from 24 points on ExtraLight in place of Light, and Bold.
  Q_INVOKABLE [[nodiscard]] QFont at(double size, int weight) const;

  /// The same with `spacing` points added after each letter.
  Q_INVOKABLE [[nodiscard]] QFont spaced(double size, int weight, double spacing) const;

  /// The width that every digit of `font` fits into.
  Q_INVOKABLE [[nodiscard]] double digitWidth(const QFont& font) const;

  /// How far a colon between digits of `font` has to rise to stand at half their height.
  Q_INVOKABLE [[nodiscard]] double colonRise(const QFont& font) const;
};

}  // namespace dormel
