#include "settings/qml/SettingsScenes.h"

#include "settings/qml/AccessibilityCardBridge.h"
#include "settings/qml/NightsBridge.h"
#include "settings/qml/SettingsBridge.h"
#include "ui/qml/AppPalette.h"
#include "ui/qml/UiModule.h"

// Generated beside this file. Naming it keeps the registration in a statically linked program.
void qml_register_types_Dormel_Settings();

namespace dormel {
void registerSettingsScenes(QmlSceneRegistry& registry) {
  [[gnu::used]] static void (*const keep)() = &qml_register_types_Dormel_Settings;
  registry.prepareWith(loadUiModule);
  registry.add(ViewKind::accessibilityCard,
               qmlScene<AccessibilityCardBridge, PaintedView>("Settings/AccessibilityCard", Qt::transparent));
  registry.add(ViewKind::nights, qmlScene<NightsBridge, NightsView>("Settings/NightsWindow", AppPalette::background()));
  registry.add(ViewKind::settings,
               qmlScene<SettingsBridge, SettingsView>("Settings/SettingsWindow", AppPalette::background()));
}

}  // namespace dormel
