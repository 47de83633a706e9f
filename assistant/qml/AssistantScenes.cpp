#include "assistant/qml/AssistantScenes.h"

#include "assistant/qml/AssistantGuideBridge.h"
#include "assistant/qml/DragRowBridge.h"
#include "ui/qml/UiModule.h"

// Generated beside this file. Naming it keeps the registration in a statically linked program.
void qml_register_types_Dormel_Assistant();

namespace dormel {

void registerAssistantScenes(QmlSceneRegistry& registry) {
  [[gnu::used]] static void (*const keep)() = &qml_register_types_Dormel_Assistant;
  registry.prepareWith(loadUiModule);
  registry.add(ViewKind::assistantGuide,
               qmlScene<AssistantGuideBridge, OverlayContentView>("Assistant/AssistantGuide", Qt::transparent));
  registry.add(ViewKind::assistantDragRow,
               qmlScene<DragRowBridge, AppDragSourceView>("Assistant/DragRow", Qt::transparent));
}

}  // namespace dormel
