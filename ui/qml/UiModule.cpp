#include "ui/qml/UiModule.h"

#include <memory>

#include "ui/qml/AboutBridge.h"
#include "ui/qml/AlertBridge.h"
#include "ui/qml/AppPalette.h"
#include "ui/qml/Mark.h"
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
  registry.add(ViewKind::alert, {QUrl(QStringLiteral("qrc:/qt/qml/Dormel/Ui/AlertDialog.qml")),
                                 [](const std::shared_ptr<View>& view) -> std::unique_ptr<ViewBridge> {
                                   return std::make_unique<AlertBridge>(std::static_pointer_cast<AlertView>(view));
                                 },
                                 AppPalette::raised()});
  registry.add(ViewKind::aboutPanel, {QUrl(QStringLiteral("qrc:/qt/qml/Dormel/Ui/AboutPanel.qml")),
                                      [](const std::shared_ptr<View>& view) -> std::unique_ptr<ViewBridge> {
                                        return std::make_unique<AboutBridge>(std::static_pointer_cast<AboutView>(view));
                                      },
                                      AppPalette::raised()});
  registry.setWindowFrame(QUrl(QStringLiteral("qrc:/qt/qml/Dormel/Ui/WindowFrame.qml")));
  registry.setIcon(AppTile::icon);
}

}  // namespace dormel
