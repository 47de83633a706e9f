// The QML module Dormel.Settings: which scene draws which of the settings' views. Main thread only.
#pragma once

#include "platform/linux/qt/QmlSceneRegistry.h"

namespace dormel {

void registerSettingsScenes(QmlSceneRegistry& registry);

}  // namespace dormel
