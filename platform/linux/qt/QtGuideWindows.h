// The window server of a process with ordinary windows: the guide (all panels of the status level) is a window of the
// toolkit's, which takes no focus and lies above all others, so that its row can be dragged out of it; every other
// panel is the display system's. Main thread only.
#pragma once

#include <memory>

#include "platform/Registration.h"
#include "platform/Screens.h"
#include "platform/Windows.h"
#include "platform/linux/qt/QtDragging.h"
#include "platform/linux/qt/WindowGroup.h"

namespace dormel {

class QtGuideWindows final : public WindowServer {
 public:
  /// All but the group outlive this object.
  QtGuideWindows(WindowServer& panels, const Screens& screens, const QtDragging& dragging,
                 std::shared_ptr<WindowGroup> group)
      : panels_(panels), screens_(screens), dragging_(dragging), group_(std::move(group)) {}

  [[nodiscard]] std::shared_ptr<Window> makeWindow(const WindowStyle& style, const Rect& contentRect) override;
  void animateAlpha(const std::vector<std::shared_ptr<Window>>& windows, double alpha, Seconds duration,
                    TimingCurve curve, Task completion) override {
    panels_.animateAlpha(windows, alpha, duration, curve, std::move(completion));
  }
  [[nodiscard]] std::unique_ptr<Registration> addLocalKeyDownMonitor(
      std::function<bool(const KeyEvent&)> monitor) override {
    return panels_.addLocalKeyDownMonitor(std::move(monitor));
  }
  [[nodiscard]] std::unique_ptr<Registration> makeDisplayLink(Task onFrame) override {
    return panels_.makeDisplayLink(std::move(onFrame));
  }

 private:
  WindowServer& panels_;
  const Screens& screens_;
  const QtDragging& dragging_;
  std::shared_ptr<WindowGroup> group_;
};

}  // namespace dormel
