// Panels on Wayland, their alpha animations and the local key monitors. Main thread only.
#pragma once

#include <memory>

#include "platform/linux/wayland/Panel.h"

namespace dormel::wayland {

class PanelServer : public WindowServer {
 public:
  explicit PanelServer(std::shared_ptr<PanelContext> environment);

  [[nodiscard]] std::shared_ptr<Window> makeWindow(const WindowStyle& style, const Rect& contentRect) override;
  void animateAlpha(const std::vector<std::shared_ptr<Window>>& windows, double alpha, Seconds duration,
                    TimingCurve curve, Task completion) override;
  [[nodiscard]] std::unique_ptr<Registration> addLocalKeyDownMonitor(
      std::function<bool(const KeyEvent&)> monitor) override;
  [[nodiscard]] std::unique_ptr<Registration> makeDisplayLink(Task onFrame) override;

 private:
  std::shared_ptr<PanelContext> env_;
  AlphaAnimator animator_;
};

}  // namespace dormel::wayland
