#include "ui/qml/UiModule.h"

#include "ui/qml/AboutBridge.h"
#include "ui/qml/AlertBridge.h"
#include "ui/qml/AppPalette.h"
#include "ui/qml/Logo.h"
#include "ui/qml/PressableAccessible.h"
#include "ui/qml/Typeface.h"

// Generated beside this file. Naming it keeps the registration in a statically linked program.
void qml_register_types_Dormel_Ui();

namespace dormel {

void loadUiModule(const DrawingServices& services) {
  [[gnu::used]] static void (*const keep)() = &qml_register_types_Dormel_Ui;
  [[maybe_unused]] static const bool loaded = (Typeface::load(services), installPressableAccessible(), true);
}

void registerUiScenes(QmlSceneRegistry& registry) {
  registry.prepareWith(loadUiModule);
  registry.add(ViewKind::alert, qmlScene<AlertBridge, AlertView>("Ui/AlertDialog", AppPalette::raised()));
  registry.add(ViewKind::aboutPanel, qmlScene<AboutBridge, AboutView>("Ui/AboutPanel", AppPalette::raised()));
  registry.setWindowFrame(QUrl(QStringLiteral("qrc:/qt/qml/Dormel/Ui/WindowFrame.qml")));
  registry.setIcon(AppTile::icon);
}

}  // namespace dormel
