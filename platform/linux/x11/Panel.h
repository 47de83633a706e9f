// One panel: an override-redirect window of ours with a canvas in it. No window manager places it, focuses it or
// takes it down; if another program unmaps, moves or destroys it, it comes back. Main thread only.
#pragma once

#include <memory>

#include "platform/linux/display/AlphaAnimator.h"
#include "platform/linux/display/CoalescedTimer.h"
#include "platform/linux/display/PanelCanvas.h"
#include "platform/linux/x11/PanelContext.h"
#include "platform/linux/x11/PanelSurface.h"

namespace dormel::x11 {

class Panel final : public FadingWindow, public std::enable_shared_from_this<Panel> {
 public:
  [[nodiscard]] static std::shared_ptr<Panel> create(std::shared_ptr<PanelContext> environment,
                                                     const WindowStyle& style, const Rect& contentRect);
  Panel(const Panel&) = delete;
  Panel& operator=(const Panel&) = delete;
  ~Panel() override;

  [[nodiscard]] Rect frame() const override;
  void setFrame(const Rect& frame) override;
  void setContent(std::shared_ptr<View> view) override;
  [[nodiscard]] Size contentFittingSize() const override { return canvas_.fittingSize(); }
  [[nodiscard]] double alpha() const override { return surface_.alpha(); }
  void setAlpha(double alpha) override;
  void setFadedAlpha(double alpha) override;
  /// A blocker that is opaque covers when one of these returns, as far as that is not a compositor's to do.
  void makeKeyAndOrderFront() override;
  void orderFrontRegardless() override;
  void orderOut() override;
  [[nodiscard]] bool isVisible() const override { return isVisible_; }
  void setKeyHandler(std::function<void(const KeyEvent&)> handler) override { keyHandler_ = std::move(handler); }

  void handle(const xcb_generic_event_t& event);
  /// Another program may have cut the window.
  void shapeChanged(std::uint8_t kind, bool isShaped);
  void compositorChanged() { surface_.compositorChanged(); }
  /// The screens changed: the window goes to where its frame is in pixels now.
  void placeAnew();
  [[nodiscard]] xcb_window_t window() const { return window_; }

 private:
  Panel(std::shared_ptr<PanelContext> environment, const WindowStyle& style, const Rect& contentRect);
  void makeWindow();
  void setProperties();
  void tellShadow();
  void orderFront();
  void settle();
  void layOutContent();
  void onFrame(const Pixels& pixels, const PixelRect& changed);
  void onKey(const xcb_key_press_event_t& event, bool isPress);
  void onLeave(const xcb_leave_notify_event_t& event);
  /// At a place on the root window.
  void onPointer(PointerAction action, int rootX, int rootY);
  /// The window's pixels for a frame: the shadow's room is part of it.
  [[nodiscard]] PixelRect areaOf(const Rect& frame) const;
  void moveTo(const PixelRect& area);
  /// Undoes what another program did to the visible window, as often as the budget allows.
  void putBack();
  [[nodiscard]] bool isBlack() const { return style_.background == WindowBackground::black; }

  std::shared_ptr<PanelContext> env_;
  WindowStyle style_;
  Rect frame_;      ///< in points, the truth
  PixelRect area_;  ///< where that is in the root window
  xcb_window_t window_ = XCB_NONE;
  PanelSurface surface_;
  PanelCanvas canvas_;
  bool isVisible_ = false;
  bool isMappedUnseen_ = false;  ///< asked for; the server may not have got to it
  RateLimiter putBackBudget_;
  std::function<void(const KeyEvent&)> keyHandler_;
  CoalescedTimer putBackLater_;
};

}  // namespace dormel::x11
