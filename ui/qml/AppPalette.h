// The colours that everything is made of: one near-black and white at few opacities, and a dot of colour for a state.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QObject>

namespace dormel {

class AppPalette : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON
  Q_PROPERTY(QColor background READ background CONSTANT)
  Q_PROPERTY(QColor raised READ raised CONSTANT)
  Q_PROPERTY(QColor text READ text CONSTANT)
  Q_PROPERTY(QColor secondary READ secondary CONSTANT)
  Q_PROPERTY(QColor faint READ faint CONSTANT)
  Q_PROPERTY(QColor fill READ fill CONSTANT)
  Q_PROPERTY(QColor hairline READ hairline CONSTANT)
  Q_PROPERTY(QColor green READ green CONSTANT)
  Q_PROPERTY(QColor warm READ warm CONSTANT)
  Q_PROPERTY(bool highContrast READ highContrast CONSTANT)

 public:
  [[nodiscard]] static QColor white(double opacity) { return QColor::fromRgbF(1, 1, 1, static_cast<float>(opacity)); }

  [[nodiscard]] static QColor background() { return {10, 10, 11}; }
  /// What stands in front of the background: an alert.
  [[nodiscard]] static QColor raised() { return {22, 22, 24}; }
  [[nodiscard]] static QColor text() { return white(0.95); }
  [[nodiscard]] static QColor secondary() { return white(highContrast_ ? 0.9 : 0.6); }
  [[nodiscard]] static QColor faint() { return white(highContrast_ ? 0.8 : 0.35); }
  [[nodiscard]] static QColor fill() { return white(highContrast_ ? 0.2 : 0.08); }
  [[nodiscard]] static QColor hairline() { return white(highContrast_ ? 0.6 : 0.08); }
  /// All is well.
  [[nodiscard]] static QColor green() { return {84, 199, 132}; }
  /// Somebody should look.
  [[nodiscard]] static QColor warm() { return {240, 178, 92}; }

  /// The user wants more of it. Before any scene is made.
  [[nodiscard]] static bool highContrast() { return highContrast_; }
  static void setHighContrast(bool on) { highContrast_ = on; }

 private:
  static inline bool highContrast_ = false;
};

}  // namespace dormel
