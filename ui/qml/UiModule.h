// The QML module Dormel.Ui. Main thread only.
#pragma once

#include "platform/linux/qt/QmlSceneRegistry.h"

namespace dormel {

/// Makes the module importable and its typeface known. To be called before the first scene that imports it loads;
/// once is enough.
void loadUiModule(const DrawingServices& services);

/// Says how what every window of the program has in common looks: its frame, its alerts, its icon.
void registerUiScenes(QmlSceneRegistry& registry);

}  // namespace dormel
