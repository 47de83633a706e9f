// Panels on X, their alpha animations and the local key monitors. Without a display the windows it makes are seen by
// nobody. Main thread only.
#pragma once

#include <memory>

#include "platform/linux/display/AlphaAnimator.h"
#include "platform/linux/x11/PanelContext.h"

namespace dormel::x11 {

class PanelServer : public WindowServer {
 public:
  /// `loop`, `canvases` and `clock` outlive it and every window made here.
  PanelServer(RunLoop& loop, const std::shared_ptr<Connection>& connection, const ServerFeatures& features,
              std::shared_ptr<ScreensX11> screens, CanvasFactory& canvases, const Clock& clock);

  [[nodiscard]] std::shared_ptr<Window> makeWindow(const WindowStyle& style, const Rect& contentRect) override;
  void animateAlpha(const std::vector<std::shared_ptr<Window>>& windows, double alpha, Seconds duration,
                    TimingCurve curve, Task completion) override;
  [[nodiscard]] std::unique_ptr<Registration> addLocalKeyDownMonitor(
      std::function<bool(const KeyEvent&)> monitor) override;
  [[nodiscard]] std::unique_ptr<Registration> makeDisplayLink(Task onFrame) override;

  /// Shows the monitors a key-down that reached a window of this application that is no panel; true when one
  /// swallows it.
  [[nodiscard]] bool isSwallowed(const KeyEvent& event) { return env_ && env_->keyMonitors.swallow(event); }
  /// What a key of a window of ours is, by its X key code.
  [[nodiscard]] KeyCode keyCode(xcb_keycode_t code) const {
    return env_ ? env_->numbering.usual().virtualKeyCode(code) : KeyCodes().virtualKeyCode(code);
  }
  /// The window that gets the input focus back from our panels; none where none of them has it. Any thread.
  [[nodiscard]] xcb_window_t focusOwed() const { return env_ ? env_->focus.owed() : xcb_window_t{XCB_NONE}; }
  [[nodiscard]] bool isCompositing() const { return env_ && env_->compositor.isRunning(); }

 private:
  std::shared_ptr<PanelContext> env_;  ///< null without a display
  RunLoop& loop_;
  AlphaAnimator animator_;
};

}  // namespace dormel::x11
