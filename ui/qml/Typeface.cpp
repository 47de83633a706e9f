#include "ui/qml/Typeface.h"

#include <QDir>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <algorithm>
#include <cmath>

namespace dormel {
namespace {

constexpr double DISPLAY_SIZE = 24;

}  // namespace

void Typeface::load(const DrawingServices& services) {
  const QDir folder(QString::fromStdString(services.bundlePath() + "/Contents/Resources/Fonts"));
  int loaded = 0;
  for (const QString& file : folder.entryList({QStringLiteral("*.otf")}, QDir::Files)) {
    if (QFontDatabase::addApplicationFont(folder.filePath(file)) >= 0) ++loaded;
  }
  if (loaded == 0) services.printError("No fonts in " + folder.path().toStdString());
}

QFont Typeface::at(double size, int weight) const {
  QFont font(size >= DISPLAY_SIZE ? QStringLiteral("Inter Display") : QStringLiteral("Inter"));
  font.setPixelSize(static_cast<int>(std::lround(size)));
  font.setWeight(static_cast<QFont::Weight>(weight));
  font.setHintingPreference(QFont::PreferNoHinting);
  return font;
}

QFont Typeface::spaced(double size, int weight, double spacing) const {
  QFont font = at(size, weight);
  font.setLetterSpacing(QFont::AbsoluteSpacing, spacing);
  return font;
}

double Typeface::digitWidth(const QFont& font) const {
  const QFontMetricsF metrics(font);
  double width = 0;
  for (char16_t digit = u'0'; digit <= u'9'; ++digit) width = std::max(width, metrics.horizontalAdvance(QChar(digit)));
  return width;
}

double Typeface::colonRise(const QFont& font) const {
  const QFontMetricsF metrics(font);
  return (metrics.capHeight() - metrics.tightBoundingRect(QStringLiteral(":")).height()) / 2;
}

}  // namespace dormel
