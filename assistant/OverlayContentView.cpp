#include "assistant/OverlayContentView.h"

#include <utility>

#include "platform/Texts.h"

namespace dormel {

OverlayContentView::OverlayContentView(const AssentaHostApp& hostApp, AssentaPanel panel, std::function<void()> onBack)
    : title_(translate("Drag %1 to the list above to allow %2", {hostApp.displayName, dormel::title(panel)})),
      dragSource_(AppDragSourceView::create(hostApp)),
      onBack_(std::move(onBack)) {}

void OverlayContentView::back() const {
  if (const auto told = onBack_) told();
}

}  // namespace dormel
