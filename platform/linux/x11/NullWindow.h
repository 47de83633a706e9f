// A window where there is no display: it keeps what it is told, and nobody sees it. Main thread only.
#pragma once

#include <algorithm>
#include <memory>
#include <utility>

#include "platform/linux/display/AlphaAnimator.h"

namespace dormel::x11 {

class NullWindow final : public FadingWindow {
 public:
  explicit NullWindow(const Rect& frame) : frame_(frame) {}

  [[nodiscard]] Rect frame() const override { return frame_; }
  void setFrame(const Rect& frame) override { frame_ = frame; }
  void setContent(std::shared_ptr<View> view) override { view_ = std::move(view); }
  [[nodiscard]] Size contentFittingSize() const override { return {}; }
  [[nodiscard]] double alpha() const override { return alpha_; }
  void setAlpha(double alpha) override {
    static_cast<void>(beginFade());
    setFadedAlpha(alpha);
  }
  void setFadedAlpha(double alpha) override { alpha_ = std::clamp(alpha, 0.0, 1.0); }
  void makeKeyAndOrderFront() override { isVisible_ = true; }
  void orderFrontRegardless() override { isVisible_ = true; }
  void orderOut() override { isVisible_ = false; }
  [[nodiscard]] bool isVisible() const override { return isVisible_; }
  void setKeyHandler(std::function<void(const KeyEvent&)>) override {}

 private:
  Rect frame_;
  std::shared_ptr<View> view_;
  double alpha_ = 1;
  bool isVisible_ = false;
};

}  // namespace dormel::x11
