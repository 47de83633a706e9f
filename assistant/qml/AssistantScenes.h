// The QML module Dormel.Assistant: which scene draws which of the assistant's views. Main thread only.
#pragma once

#include "platform/linux/qt/QmlSceneRegistry.h"

namespace dormel {

void registerAssistantScenes(QmlSceneRegistry& registry);

}  // namespace dormel
