// One panel, shown by the shell's extension. Main thread only.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "platform/linux/display/PanelCanvas.h"
#include "platform/linux/gnome/FrameMemory.h"
#include "platform/linux/gnome/Stage.h"

namespace dormel::gnome {

class Panel final : public Window, public std::enable_shared_from_this<Panel> {
 public:
  Panel(std::shared_ptr<Stage> stage, const WindowStyle& style, const Rect& contentRect);
  Panel(const Panel&) = delete;
  Panel& operator=(const Panel&) = delete;
  ~Panel() override;

  [[nodiscard]] Rect frame() const override { return frame_; }
  void setFrame(const Rect& frame) override;
  void setContent(std::shared_ptr<View> view) override { canvas_.setView(std::move(view)); }
  [[nodiscard]] Size contentFittingSize() const override { return canvas_.fittingSize(); }
  /// While it fades, where it is going to.
  [[nodiscard]] double alpha() const override { return alpha_; }
  void setAlpha(double alpha) override { fadeTo(alpha, 0, TimingCurve::linear); }
  /// The shell does the fading.
  void fadeTo(double alpha, Seconds duration, TimingCurve curve);
  void makeKeyAndOrderFront() override { orderFrontRegardless(); }
  void orderFrontRegardless() override;
  void orderOut() override;
  [[nodiscard]] bool isVisible() const override { return isVisible_; }
  void setKeyHandler(std::function<void(const KeyEvent&)> handler) override { keyHandler_ = std::move(handler); }

  void key(const KeyEvent& event);
  /// A "pointer" or a "frame" of the extension; what is another panel's is ignored.
  void heard(const std::string& kind, const Message& body);
  void monitorsChanged();
  /// Tells a connection that knows nothing of this panel.
  void sayAll();
  [[nodiscard]] bool isBlack() const { return style_.background == WindowBackground::black; }
  [[nodiscard]] bool isKey() const { return style_.canBecomeKey; }
  /// Nothing shines through, and no fade goes on.
  [[nodiscard]] bool isOpaque() const { return alpha_ >= 1 && !isFading_; }

 private:
  /// Its frame and the room for its shadow.
  [[nodiscard]] Rect area() const;
  /// Its frame within that: the shadow takes no clicks.
  [[nodiscard]] Rect reach() const;
  void say(Seconds duration, TimingCurve curve);
  void layOut();
  void onFrame(const Pixels& pixels, const PixelRect& changed);
  /// Says the newest frame, unless the shell is still busy with one, or had one a moment ago.
  void sayFrame();
  void onPointer(const Message& body);
  [[nodiscard]] Rect contentPlace() const;

  std::shared_ptr<Stage> stage_;
  WindowStyle style_;
  const int number_;
  Rect frame_;
  double alpha_ = 1;
  bool isVisible_ = false;
  bool isFading_ = false;
  Timer fadeEnd_;
  std::unique_ptr<FrameMemory> memory_;
  int pool_ = 0;
  Message newestFrame_;
  bool isFrameSaid_ = true;  ///< the newest one
  std::uint64_t saidSerial_ = 0;
  bool isShellBusy_ = false;  ///< with the frame before
  PanelCanvas canvas_;
  std::function<void(const KeyEvent&)> keyHandler_;
  Timer pace_;  ///< runs while it is too early for another frame
};

}  // namespace dormel::gnome
