// One panel: a surface of the desktop's overlay on the output that it lies on, and, while the session lock is up, the
// lock's own surface there. Its picture stands on whichever of the two can be seen. Main thread only.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/common/RateLimiter.h"
#include "platform/common/lock/FocusRetrier.h"
#include "platform/linux/display/AlphaAnimator.h"
#include "platform/linux/display/CoalescedTimer.h"
#include "platform/linux/display/KeyMonitors.h"
#include "platform/linux/display/PanelCanvas.h"
#include "platform/linux/wayland/Content.h"
#include "platform/linux/wayland/Inhibitors.h"
#include "platform/linux/wayland/Keyboard.h"
#include "platform/linux/wayland/Pointer.h"
#include "platform/linux/wayland/SessionLock.h"

namespace dormel::wayland {

class Panel;

/// What all panels of one connection share. It outlives the last of them.
struct PanelContext {
  PanelContext(Connection& connection, EventLoop& loop, Outputs& outputs, Keyboard& keyboard, Pointer& pointer,
               CanvasFactory& canvases, const Clock& clock, const std::string& lockMark);
  PanelContext(const PanelContext&) = delete;
  PanelContext& operator=(const PanelContext&) = delete;

  /// A panel came, went, or is black in another strength.
  void panelsChanged();
  void outputsChanged();
  void lockChanged();
  void keyboardChanged();
  /// Whether the lock's surfaces may ask for the keyboard at all.
  [[nodiscard]] KeyboardUse keyboardUse() const;
  /// To the key panel that is in front.
  void deliver(const KeyEvent& event);
  [[nodiscard]] std::vector<std::shared_ptr<Panel>> visiblePanels() const;

  Connection& connection;
  EventLoop& loop;
  Outputs& outputs;
  Keyboard& keyboard;
  Pointer& pointer;
  CanvasFactory& canvases;
  const Clock& clock;
  Shades shades;
  Inhibitors inhibitors;
  SessionLock lock;
  FocusRetrier focus;
  std::unique_ptr<LayerShellSurface> holder;  ///< a clear point that has the keyboard where no panel can have it
  CoalescedTimer updateHolder;
  bool isFreshHolderWanted = false;
  std::vector<std::weak_ptr<Panel>> panels;  ///< in the order in which they came up
  KeyMonitors keyMonitors;
};

class Panel final : public FadingWindow, public std::enable_shared_from_this<Panel> {
 public:
  Panel(std::shared_ptr<PanelContext> environment, const WindowStyle& style, const Rect& contentRect);
  Panel(const Panel&) = delete;
  Panel& operator=(const Panel&) = delete;
  ~Panel() override;

  [[nodiscard]] Rect frame() const override { return frame_; }
  void setFrame(const Rect& frame) override;
  void setContent(std::shared_ptr<View> view) override;
  [[nodiscard]] Size contentFittingSize() const override { return canvas_.fittingSize(); }
  [[nodiscard]] double alpha() const override { return alpha_; }
  void setAlpha(double alpha) override;
  void setFadedAlpha(double alpha) override;
  void makeKeyAndOrderFront() override { orderFrontRegardless(); }
  void orderFrontRegardless() override;
  void orderOut() override;
  [[nodiscard]] bool isVisible() const override { return isVisible_; }
  void setKeyHandler(std::function<void(const KeyEvent&)> handler) override { keyHandler_ = std::move(handler); }

  void key(const KeyEvent& event);
  void outputsChanged();
  void lockChanged();
  /// The compositor is told whether the panel wants the keyboard, or asked for it once more.
  void setKeyboardUse(KeyboardUse use);
  bool askForKeyboardAgain();
  [[nodiscard]] bool isBlack() const { return style_.background == WindowBackground::black; }
  [[nodiscard]] bool isLowering() const { return isLowering_; }
  [[nodiscard]] bool isKey() const { return style_.canBecomeKey; }

 private:
  void makeLayer();
  void dropLayer();
  /// What lies beneath a shadow can be clicked. Shown with the surface's next commit.
  void keepShadowFromPointer();
  [[nodiscard]] Placement placement(const Output& output) const;
  [[nodiscard]] Pointer::Target target();
  /// Has the picture stand on the surface that can be seen.
  void stand();
  void layOut();
  void paint();
  void onFrame(const Pixels& pixels, const PixelRect& changed);
  void onPointer(PointerAction action, double x, double y);

  std::shared_ptr<PanelContext> env_;
  WindowStyle style_;
  Rect frame_;
  double alpha_ = 1;
  bool isVisible_ = false;
  bool isLowering_ = false;
  std::unique_ptr<LayerShellSurface> layer_;
  OutputSurface* standing_ = nullptr;  ///< the surface that the picture is on
  Content content_;
  PanelCanvas canvas_;
  std::function<void(const KeyEvent&)> keyHandler_;
  RateLimiter putBackBudget_;
  CoalescedTimer putBackLater_;
};

}  // namespace dormel::wayland
