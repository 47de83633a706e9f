#include "overlay/qml/OverlayScenes.h"

#include "overlay/qml/BlockerOverlayBridge.h"
#include "overlay/qml/GraceCountdownBridge.h"
#include "ui/qml/UiModule.h"

// Generated beside this file. Naming it keeps the registration in a statically linked program.
void qml_register_types_Dormel_Overlay();

namespace dormel {
namespace {

template <typename Bridge, typename ConcreteView>
QmlScene scene(const char* name, const QColor& background) {
  return {QUrl(QStringLiteral("qrc:/qt/qml/Dormel/Overlay/%1.qml").arg(QLatin1String(name))),
          [](const std::shared_ptr<View>& view) -> std::unique_ptr<ViewBridge> {
            return std::make_unique<Bridge>(std::static_pointer_cast<ConcreteView>(view));
          },
          background};
}

}  // namespace

void registerOverlayScenes(QmlSceneRegistry& registry) {
  [[gnu::used]] static void (*const keep)() = &qml_register_types_Dormel_Overlay;
  registry.prepareWith(loadUiModule);
  registry.add(ViewKind::blockerOverlay, scene<BlockerOverlayBridge, PaintedView>("BlockerOverlay", Qt::black));
  registry.add(ViewKind::graceCountdown, scene<GraceCountdownBridge, PaintedView>("GracePill", Qt::transparent));
}

}  // namespace dormel
