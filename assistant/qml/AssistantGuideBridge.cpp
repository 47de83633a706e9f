#include "assistant/qml/AssistantGuideBridge.h"

#include <QQmlEngine>
#include <utility>

namespace dormel {

AssistantGuideBridge::AssistantGuideBridge(std::shared_ptr<OverlayContentView> view)
    : view_(std::move(view)), row_(view_->dragSource(), true) {
  QQmlEngine::setObjectOwnership(&row_, QQmlEngine::CppOwnership);
}

}  // namespace dormel
