#include "platform/linux/qt/WindowGroup.h"

#include "platform/linux/qt/DesktopWindow.h"

namespace dormel {

void WindowGroup::setMainWindow(DesktopWindow* window) {
  mainWindow_ = window;
  if (onMainWindow_) onMainWindow_(*window);
}

bool WindowGroup::takes(const QKeyEvent& press) const {
  if (help_.isSwallowed && help_.isSwallowed(press.nativeScanCode())) return true;
  return shortcut_ && shortcut_(press);
}

}  // namespace dormel
