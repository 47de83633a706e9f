#include "settings/qml/SettingsScenes.h"

#include <memory>

#include "settings/qml/AccessibilityCardBridge.h"
#include "settings/qml/NightsBridge.h"
#include "settings/qml/SettingsBridge.h"
#include "ui/qml/AppPalette.h"
#include "ui/qml/UiModule.h"

// Generated beside this file. Naming it keeps the registration in a statically linked program.
void qml_register_types_Dormel_Settings();

namespace dormel {
namespace {

template <typename Bridge, typename ConcreteView>
QmlScene scene(const char* name, const QColor& background) {
  return {QUrl(QStringLiteral("qrc:/qt/qml/Dormel/Settings/%1.qml").arg(QLatin1String(name))),
          [](const std::shared_ptr<View>& view) -> std::unique_ptr<ViewBridge> {
            return std::make_unique<Bridge>(std::static_pointer_cast<ConcreteView>(view));
          },
          background};
}

}  // namespace

void registerSettingsScenes(QmlSceneRegistry& registry) {
  [[gnu::used]] static void (*const keep)() = &qml_register_types_Dormel_Settings;
  registry.prepareWith(loadUiModule);
  registry.add(ViewKind::accessibilityCard,
               scene<AccessibilityCardBridge, PaintedView>("AccessibilityCard", Qt::transparent));
  registry.add(ViewKind::nights, scene<NightsBridge, NightsView>("NightsWindow", AppPalette::background()));
  registry.add(ViewKind::settings, scene<SettingsBridge, SettingsView>("SettingsWindow", AppPalette::background()));
}

}  // namespace dormel
