#include "tests/drawn/SeenItems.h"

#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <algorithm>
#include <cmath>

namespace dormel {
namespace {

void collect(const QQuickItem& item, double opacity, std::vector<SeenItem>& found) {
  opacity *= item.opacity();
  if (!item.isVisible() || opacity < 0.004) return;
  // Components that are a text are texts.
  const char* kind = item.inherits("QQuickText") ? "QQuickText" : item.metaObject()->className();
  const SeenItem seen{QString::fromLatin1(kind), item.property("text").toString(),
                      item.mapRectToScene(QRectF(0, 0, item.width(), item.height())), opacity};
  if (seen.kind != QStringLiteral("QQuickText") || !seen.text.isEmpty()) found.push_back(seen);
  for (const QQuickItem* child : item.childItems()) collect(*child, opacity, found);
}

}  // namespace

std::vector<SeenItem> seenItems() {
  std::vector<SeenItem> found;
  const auto windows = QGuiApplication::allWindows();
  if (!windows.isEmpty()) collect(*static_cast<QQuickWindow*>(windows.constLast())->contentItem(), 1, found);
  return found;
}

QStringList seenLines() {
  std::vector<SeenItem> texts = seenItems();
  std::erase_if(texts, [](const SeenItem& item) { return item.kind != QStringLiteral("QQuickText"); });
  const auto height = [](const SeenItem& item) { return item.box.center().y(); };
  std::sort(texts.begin(), texts.end(), [&](const auto& a, const auto& b) { return height(a) < height(b); });
  QStringList lines;
  for (auto from = texts.begin(); from != texts.end();) {
    // A colon stands a little higher than the digits beside it.
    const auto to = std::find_if(from, texts.end(), [&](const auto& item) { return height(item) > height(*from) + 8; });
    std::sort(from, to, [](const auto& a, const auto& b) { return a.box.left() < b.box.left(); });
    for (auto item = from; item != to; ++item) {
      const bool goesOn = item != from && item->box.left() - std::prev(item)->box.right() < 24;
      if (goesOn) {
        lines.last() += item->text;
      } else {
        lines << item->text;
      }
    }
    from = to;
  }
  return lines;
}

QRectF boxOf(const QString& text) {
  for (const SeenItem& item : seenItems()) {
    if (item.text == text) return item.box;
  }
  return {};
}

QRectF boxOfRing() {
  for (const SeenItem& item : seenItems()) {
    if (item.kind.startsWith(QStringLiteral("dormel::ProgressRing"))) return item.box;
  }
  return {};
}

}  // namespace dormel
