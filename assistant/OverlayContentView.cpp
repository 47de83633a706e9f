#include "assistant/OverlayContentView.h"

#include <utility>

namespace dormel {

OverlayContentView::OverlayContentView(const AssentaHostApp& hostApp, AssentaPanel panel, std::function<void()> onBack)
    : title_("Drag " + hostApp.displayName + " to the list above to allow " + std::string(dormel::title(panel))),
      dragSource_(AppDragSourceView::create(hostApp)),
      onBack_(std::move(onBack)) {}

void OverlayContentView::back() const {
  if (const auto told = onBack_) told();
}

}  // namespace dormel
