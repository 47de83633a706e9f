// Contents/Helpers/paint, the painter: knows how the panels look, and nothing else of the program.
#include <utility>

#include "overlay/qml/OverlayScenes.h"
#include "platform/linux/qt/PaintServer.h"
#include "settings/qml/SettingsScenes.h"

int main() {
  using namespace dormel;
  QmlSceneRegistry scenes;
  registerOverlayScenes(scenes);
  registerSettingsScenes(scenes);
  return paint::runPainter(std::move(scenes));
}
