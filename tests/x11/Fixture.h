// The whole X family on a private server, with canvases that are one colour.
#pragma once

#include <optional>

#include "platform/linux/posix/PosixClock.h"
#include "platform/linux/x11/X11Platform.h"
#include "tests/x11/XServer.h"

namespace dormel::x11::test {

struct PlainView : View {
  [[nodiscard]] ViewKind kind() const override { return ViewKind::blockerOverlay; }
};

/// A picture of one colour, opaque in the middle half of its width, transparent (black, for lack of alpha) beside.
class PlainCanvas : public Canvas {
 public:
  explicit PlainCanvas(Size fitting) : fitting_(fitting) {}
  [[nodiscard]] Size fittingSize() const override { return fitting_; }
  void resize(const Size& size, double scale) override;
  void setOnFrame(std::function<void(const Pixels&, const PixelRect&)> onFrame) override;
  void setShowing(bool showing) override;
  bool pointer(PointerAction action, double x, double y) override;

  void paint(std::uint32_t colour, const PixelRect& part);
  [[nodiscard]] int width() const { return width_; }
  [[nodiscard]] int height() const { return height_; }

  bool isShowing = false;
  bool takesPointer = false;
  std::vector<std::string> pointerStory;
  std::optional<SharedPixels> shared;  ///< what it says of its pixels

 private:
  void report(const PixelRect& part);
  Size fitting_;
  int width_ = 0;
  int height_ = 0;
  std::vector<std::uint32_t> pixels_;
  std::function<void(const Pixels&, const PixelRect&)> onFrame_;
};

class PlainCanvases : public CanvasFactory {
 public:
  [[nodiscard]] std::unique_ptr<Canvas> make(std::shared_ptr<View> view) override;
  Size fitting{100, 60};
  std::vector<PlainCanvas*> made;
};

constexpr std::uint32_t CANVAS_COLOUR = 0xffe0c080;

struct Fixture {
  explicit Fixture(const XServer& server) : Fixture(server.display()) {}
  explicit Fixture(const std::string& display) : x11(loop(), canvases, clock, display) {}
  /// Blockers over all screens, with content, as a lock has them: not ordered in.
  [[nodiscard]] std::vector<std::shared_ptr<Window>> blockers();
  void cover(const std::vector<std::shared_ptr<Window>>& windows, double alpha);
  void fade(const std::vector<std::shared_ptr<Window>>& windows, double alpha, Seconds duration);

  posix::PosixClock clock;
  PlainCanvases canvases;
  X11Platform x11;
  int completions = 0;
};

[[nodiscard]] bool isComposited(const XServer& server);
[[nodiscard]] WindowStyle blockerStyle();
[[nodiscard]] WindowStyle pillStyle();

}  // namespace dormel::x11::test
