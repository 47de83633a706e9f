#include "onboarding/qml/OnboardingScenes.h"

#include "onboarding/qml/OnboardingBridge.h"
#include "ui/qml/AppPalette.h"
#include "ui/qml/UiModule.h"

// Generated beside this file. Naming it keeps the registration in a statically linked program.
void qml_register_types_Dormel_Onboarding();

namespace dormel {

void loadOnboardingModule() { [[gnu::used]] static void (*const keep)() = &qml_register_types_Dormel_Onboarding; }

void registerOnboardingScenes(QmlSceneRegistry& registry) {
  loadOnboardingModule();
  registry.prepareWith(loadUiModule);
  registry.add(ViewKind::onboarding,
               qmlScene<OnboardingBridge, OnboardingView>("Onboarding/OnboardingFlow", AppPalette::background()));
}

}  // namespace dormel
