// The QML module Dormel.Overlay: which scene draws which of the overlay's views. Main thread only.
#pragma once

#include "platform/linux/qt/QmlSceneRegistry.h"

namespace dormel {

void registerOverlayScenes(QmlSceneRegistry& registry);

}  // namespace dormel
