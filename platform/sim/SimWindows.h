// The window server of a simulated machine: panels with an order, an alpha that animates in virtual time, a keyboard
// focus, and the question that matters: how black is each screen?
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Registration.h"
#include "platform/Windows.h"
#include "platform/common/Canvas.h"
#include "platform/sim/SimJournal.h"
#include "platform/sim/SimScreens.h"
#include "platform/sim/SimTimeline.h"

namespace dormel {

class SimWindowServer;

class SimWindow : public Window, public std::enable_shared_from_this<SimWindow> {
 public:
  SimWindow(SimWindowServer& server, int number, const WindowStyle& style, const Rect& frame);
  SimWindow(const SimWindow&) = delete;
  SimWindow& operator=(const SimWindow&) = delete;
  ~SimWindow() override;

  [[nodiscard]] Rect frame() const override { return frame_; }
  void setFrame(const Rect& frame) override;
  void setContent(std::shared_ptr<View> view) override;
  [[nodiscard]] Size contentFittingSize() const override;
  [[nodiscard]] double alpha() const override;
  void setAlpha(double alpha) override;
  void makeKeyAndOrderFront() override;
  void orderFrontRegardless() override;
  void orderOut() override;
  [[nodiscard]] bool isVisible() const override { return visible_; }
  void setKeyHandler(std::function<void(const KeyEvent&)> handler) override { keyHandler_ = std::move(handler); }

  /// Where it stands in pixels.
  [[nodiscard]] const PixelRect& area() const { return area_; }
  /// It has become less black since it came up, or is about to.
  [[nodiscard]] bool isLowering() const { return lowering_; }
  /// Counts the windows of the machine from 1.
  [[nodiscard]] int number() const { return number_; }
  [[nodiscard]] const WindowStyle& style() const { return style_; }
  [[nodiscard]] const std::shared_ptr<View>& content() const { return content_; }
  /// The first pixel of its picture and how often it was drawn; nothing before there is one, and on a machine without
  /// canvases.
  [[nodiscard]] std::uint32_t corner() const { return corner_; }
  [[nodiscard]] int frames() const { return frames_; }

 private:
  friend class SimWindowServer;
  void animate(double to, Seconds duration, TimingCurve curve);

  void showContent();

  SimWindowServer& server_;
  int number_;
  WindowStyle style_;
  Rect frame_;
  PixelRect area_;
  std::shared_ptr<View> content_;
  std::unique_ptr<Canvas> canvas_;
  std::uint32_t corner_ = 0;
  int frames_ = 0;
  std::function<void(const KeyEvent&)> keyHandler_;
  bool visible_ = false;
  bool shownBefore_ = false;
  bool lowering_ = false;
  // Alpha: where it stands, or from where and since when it moves there.
  double alpha_ = 1;
  double alphaFrom_ = 1;
  Seconds alphaSince_ = 0;
  Seconds alphaDuration_ = 0;
  TimingCurve curve_ = TimingCurve::linear;
};

class SimWindowServer : public WindowServer {
 public:
  SimWindowServer(SimTimeline& timeline, SimJournal& journal, const SimScreens& screens)
      : timeline_(timeline), journal_(journal), screens_(screens) {}

  [[nodiscard]] std::shared_ptr<Window> makeWindow(const WindowStyle& style, const Rect& contentRect) override;
  void animateAlpha(const std::vector<std::shared_ptr<Window>>& windows, double alpha, Seconds duration,
                    TimingCurve curve, Task completion) override;
  [[nodiscard]] std::unique_ptr<Registration> addLocalKeyDownMonitor(
      std::function<bool(const KeyEvent&)> monitor) override;
  /// Sixty frames a second.
  [[nodiscard]] std::unique_ptr<Registration> makeDisplayLink(Task onFrame) override;

  /// The visible windows, backmost first; those of higher levels above the others.
  [[nodiscard]] std::vector<SimWindow*> visible() const;
  /// How much of what lies beneath is hidden on all of these pixels, 0 to 1, by opaque black panels above everything.
  [[nodiscard]] double cover(const PixelRect& area) const;
  /// The least covered screen's cover; 1 without screens.
  [[nodiscard]] double cover() const;

  /// From now on, remembers the least cover that any of the present screens ever has while it stays as it is.
  void watchCover();
  [[nodiscard]] double leastCover() const { return leastCover_; }

  /// The key window; null when another application has the focus.
  [[nodiscard]] SimWindow* keyWindow() const { return keyWindow_; }
  /// Another application takes the focus.
  void stealFocus();
  /// An ordinary window of this application has the focus whenever none of its panels has it; or no longer.
  void giveFocusToOrdinaryWindow() { ordinaryFocus_ = true; }
  void stealOrdinaryFocus() { ordinaryFocus_ = false; }
  /// Whether keys that no tap takes reach this application.
  [[nodiscard]] bool hasFocus() const { return keyWindow_ != nullptr || ordinaryFocus_; }
  /// A key event reaches the key window, or an ordinary window of ours; false when there is none.
  bool deliverKey(const KeyEvent& event);

  /// The drawing side: told once per window, in a turn after it first came on screen, and asked for sizes.
  void setFirstShown(std::function<void(View&)> told) { firstShown_ = std::move(told); }
  void tellFirstShown(const std::weak_ptr<View>& content);
  void setFittingSize(std::function<Size(const View&)> asked) { fittingSize_ = std::move(asked); }

  /// The screens changed: every window goes where its frame is in pixels, in a turn after the notice.
  void screensChanged();
  /// Has panels draw their content, by canvases of that maker; null for nobody. It outlives this.
  void setCanvases(CanvasFactory* canvases) { canvases_ = canvases; }

  /// Told when a panel came, went, or is black in another strength: the first and the last step of a fade.
  void setOnPanelsChanged(Task onChange) { onPanelsChanged_ = std::move(onChange); }

  /// All windows are gone with their process.
  void processEnded();

 private:
  friend class SimWindow;
  void show(SimWindow& window);
  void hide(SimWindow& window);
  void makeKey(SimWindow& window);
  void checkCover();
  void placeAnew();
  void panelsChanged() {
    if (onPanelsChanged_) onPanelsChanged_();
  }

  SimTimeline& timeline_;
  SimJournal& journal_;
  const SimScreens& screens_;
  std::vector<std::weak_ptr<SimWindow>> windows_;
  std::vector<SimWindow*> order_;  // visible ones, backmost first
  SimWindow* keyWindow_ = nullptr;
  std::shared_ptr<std::vector<std::shared_ptr<std::function<bool(const KeyEvent&)>>>> monitors_ =
      std::make_shared<std::vector<std::shared_ptr<std::function<bool(const KeyEvent&)>>>>();
  CanvasFactory* canvases_ = nullptr;
  std::function<void(View&)> firstShown_;
  std::function<Size(const View&)> fittingSize_;
  Task onPanelsChanged_;
  int lastNumber_ = 0;
  bool ordinaryFocus_ = false;
  bool watching_ = false;
  std::vector<PixelRect> watched_;
  double leastCover_ = 1;
};

}  // namespace dormel
