#include "platform/linux/qt/ScreenGeometry.h"

#include <QGuiApplication>
#include <QScreen>
#include <optional>

#include "platform/CommonArea.h"

namespace dormel {

QRectF toolkitGeometry(const Rect& frame, const Screens& screens) {
  std::optional<Screen> home = screens.main();
  double shared = 0;
  for (const Screen& screen : screens.all()) {
    const double area = commonArea(screen.frame, frame);
    if (area <= shared) continue;
    home = screen;
    shared = area;
  }
  const QScreen* at = QGuiApplication::primaryScreen();
  for (const QScreen* screen : QGuiApplication::screens()) {
    if (home && screen->name() == QString::fromStdString(home->name)) at = screen;
  }
  if (!home || at == nullptr || !(home->frame.width > 0)) return {frame.x, 0, frame.width, frame.height};
  const QRectF area = at->geometry();
  const double unit = area.width() / home->frame.width;
  return {area.x() + (frame.x - home->frame.x) * unit, area.y() + (home->frame.top() - frame.top()) * unit,
          frame.width * unit, frame.height * unit};
}

}  // namespace dormel
