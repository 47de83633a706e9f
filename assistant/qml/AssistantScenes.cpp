#include "assistant/qml/AssistantScenes.h"

#include <memory>

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
               {QUrl(QStringLiteral("qrc:/qt/qml/Dormel/Assistant/AssistantGuide.qml")),
                [](const std::shared_ptr<View>& view) -> std::unique_ptr<ViewBridge> {
                  return std::make_unique<AssistantGuideBridge>(std::static_pointer_cast<OverlayContentView>(view));
                },
                Qt::transparent});
  registry.add(ViewKind::assistantDragRow, {QUrl(QStringLiteral("qrc:/qt/qml/Dormel/Assistant/DragRow.qml")),
                                            [](const std::shared_ptr<View>& view) -> std::unique_ptr<ViewBridge> {
                                              return std::make_unique<DragRowBridge>(
                                                  std::static_pointer_cast<AppDragSourceView>(view), false);
                                            },
                                            Qt::transparent});
}

}  // namespace dormel
