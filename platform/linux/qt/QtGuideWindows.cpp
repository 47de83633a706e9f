#include "platform/linux/qt/QtGuideWindows.h"

#include <QDrag>
#include <QGuiApplication>
#include <utility>

#include "platform/linux/qt/DesktopWindow.h"
#include "platform/linux/qt/ScreenGeometry.h"

namespace dormel {
namespace {

constexpr QPoint OUT_OF_SIGHT(-20000, -20000);

/// A Wayland compositor lets nobody place a window, not even beside one that its X bridge tells of.
bool canPlaceWindows() { return QGuiApplication::platformName() == QLatin1String("xcb"); }

class GuideWindow final : public Window {
 public:
  GuideWindow(const Screens& screens, const QtDragging& dragging, std::shared_ptr<WindowGroup> group, const Rect& frame)
      : screens_(screens), dragging_(dragging), group_(std::move(group)), frame_(frame) {}

  ~GuideWindow() override {
    if (window_ && dragging_.isActive()) QDrag::cancel();  // its pointer goes with it
  }
  GuideWindow(const GuideWindow&) = delete;
  GuideWindow& operator=(const GuideWindow&) = delete;

  [[nodiscard]] Rect frame() const override { return frame_; }
  void setFrame(const Rect& frame) override {
    frame_ = frame;
    if (window_) window_->place(toolkitGeometry(frame, screens_).toRect());
  }

  void setContent(std::shared_ptr<View> view) override {
    content_ = std::move(view);
    if (!canPlaceWindows()) return;
    window_.reset(new DesktopWindow(
        group_, content_,
        Qt::Window | Qt::BypassWindowManagerHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus));
    window_->setMovable(false);
    setFrame(frame_);
  }
  [[nodiscard]] Size contentFittingSize() const override { return window_ ? window_->contentFittingSize() : Size{}; }

  [[nodiscard]] double alpha() const override { return alpha_; }
  void setAlpha(double alpha) override {
    alpha_ = alpha;
    if (window_) window_->setOpacity(alpha);
  }

  void makeKeyAndOrderFront() override { orderFrontRegardless(); }
  void orderFrontRegardless() override {
    if (!window_) return;
    const bool wasVisible = std::exchange(isVisible_, true);
    if (!wasVisible) setFrame(frame_);
    if (dragging_.isActive()) return;  // the picture belongs in front
    window_->show();
    window_->raise();
  }
  void orderOut() override {
    isVisible_ = false;
    if (!window_) return;
    if (dragging_.isActive()) {
      window_->setPosition(OUT_OF_SIGHT);
    } else {
      window_->hide();
    }
  }
  [[nodiscard]] bool isVisible() const override { return isVisible_; }
  void setKeyHandler(std::function<void(const KeyEvent&)> /*handler*/) override {}  // it never has the focus

 private:
  const Screens& screens_;
  const QtDragging& dragging_;
  std::shared_ptr<WindowGroup> group_;
  Rect frame_;
  double alpha_ = 1;
  bool isVisible_ = false;
  std::shared_ptr<View> content_;
  WindowHandle window_;
};

}  // namespace

std::shared_ptr<Window> QtGuideWindows::makeWindow(const WindowStyle& style, const Rect& contentRect) {
  if (style.level != WindowLevel::status) return panels_.makeWindow(style, contentRect);
  return std::make_shared<GuideWindow>(screens_, dragging_, group_, contentRect);
}

}  // namespace dormel
