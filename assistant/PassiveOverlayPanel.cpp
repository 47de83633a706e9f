#include "assistant/PassiveOverlayPanel.h"

#include "platform/Platform.h"

namespace dormel {

WindowStyle PassiveOverlayPanel::style() {
  WindowStyle style;
  style.level = WindowLevel::status;
  style.collectionBehavior = canJoinAllSpaces | stationary | ignoresCycle | fullScreenAuxiliary;
  style.hidesOnDeactivate = false;
  style.background = WindowBackground::clear;
  style.isOpaque = false;
  style.hasShadow = true;
  style.canBecomeKey = false;
  return style;
}

std::shared_ptr<Window> PassiveOverlayPanel::create(const Size& size) {
  return platform().windows.makeWindow(style(), {0, 0, size.width, size.height});
}

}  // namespace dormel
