// The QML module Dormel.Onboarding: which scene draws the first run. Main thread only.
#pragma once

#include "platform/linux/qt/QmlSceneRegistry.h"

namespace dormel {

/// Makes the module importable. Registering its scenes does so, too.
void loadOnboardingModule();

void registerOnboardingScenes(QmlSceneRegistry& registry);

}  // namespace dormel
