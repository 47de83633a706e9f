// What stands in the scene of a canvas at this moment, found in its item tree. Shows what a picture cannot: which text
// it is that is bright there.
#pragma once

#include <QColor>
#include <QRectF>
#include <QString>
#include <QStringList>
#include <vector>

namespace dormel {

struct SeenItem {
  QString kind;  ///< "QQuickText", "dormel::ProgressRing_QML_5", ...
  QString text;  ///< of a text
  QRectF box;    ///< in the picture, points
  double opacity = 1;
};

/// The items that can be seen, opacities of all parents multiplied, of the canvas that was drawn last.
[[nodiscard]] std::vector<SeenItem> seenItems();

/// The lines of text among them, top to bottom; texts that touch each other on a line are one.
[[nodiscard]] QStringList seenLines();

/// Where that text stands; an empty box when it is not seen. The text must be one item's.
[[nodiscard]] QRectF boxOf(const QString& text);

/// Where the progress ring stands.
[[nodiscard]] QRectF boxOfRing();

}  // namespace dormel
