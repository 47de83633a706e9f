#include "overlay/qml/OverlayScenes.h"

#include "overlay/qml/BlockerOverlayBridge.h"
#include "overlay/qml/GraceCountdownBridge.h"
#include "ui/qml/UiModule.h"

// Generated beside this file. Naming it keeps the registration in a statically linked program.
void qml_register_types_Dormel_Overlay();

namespace dormel {
void registerOverlayScenes(QmlSceneRegistry& registry) {
  [[gnu::used]] static void (*const keep)() = &qml_register_types_Dormel_Overlay;
  registry.prepareWith(loadUiModule);
  registry.add(ViewKind::blockerOverlay,
               qmlScene<BlockerOverlayBridge, PaintedView>("Overlay/BlockerOverlay", Qt::black));
  registry.add(ViewKind::graceCountdown,
               qmlScene<GraceCountdownBridge, PaintedView>("Overlay/GracePill", Qt::transparent));
}

}  // namespace dormel
