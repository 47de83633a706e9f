#include "tests/x11/Fixture.h"

#include <cmath>

#include "platform/linux/x11/Reply.h"

namespace dormel::x11::test {

void PlainCanvas::resize(const Size& size, double scale) {
  width_ = static_cast<int>(std::ceil(size.width * scale));
  height_ = static_cast<int>(std::ceil(size.height * scale));
  pixels_.assign(static_cast<std::size_t>(width_ * height_), 0);
  paint(CANVAS_COLOUR, {width_ / 4, 0, width_ / 2, height_});
}

void PlainCanvas::setOnFrame(std::function<void(const Pixels&, const PixelRect&)> onFrame) {
  onFrame_ = std::move(onFrame);
}

void PlainCanvas::setShowing(bool showing) {
  isShowing = showing;
  if (showing) report({0, 0, width_, height_});
}

bool PlainCanvas::pointer(PointerAction action, double x, double y) {
  static const char* const names[] = {"press", "move", "release", "leave"};
  pointerStory.push_back(std::string(names[static_cast<int>(action)]) + " " + std::to_string(std::lround(x)) + "," +
                         std::to_string(std::lround(y)));
  return takesPointer;
}

void PlainCanvas::paint(std::uint32_t colour, const PixelRect& part) {
  for (int y = part.y; y < part.y + part.height; ++y) {
    for (int x = part.x; x < part.x + part.width; ++x) pixels_[static_cast<std::size_t>(y * width_ + x)] = colour;
  }
  report(part);
}

void PlainCanvas::report(const PixelRect& part) {
  if (onFrame_ && isShowing) onFrame_({pixels_.data(), width_, height_, width_, shared ? &*shared : nullptr}, part);
}

std::unique_ptr<Canvas> PlainCanvases::make(std::shared_ptr<View>) {
  auto canvas = std::make_unique<PlainCanvas>(fitting);
  made.push_back(canvas.get());
  return canvas;
}

WindowStyle blockerStyle() {
  WindowStyle style;
  style.level = WindowLevel::screenSaver;
  style.background = WindowBackground::black;
  style.isOpaque = true;
  style.canBecomeKey = true;
  return style;
}

WindowStyle pillStyle() {
  WindowStyle style;
  style.hasShadow = true;
  style.isMovableByBackground = true;
  return style;
}

std::vector<std::shared_ptr<Window>> Fixture::blockers() {
  std::vector<std::shared_ptr<Window>> windows;
  for (const Screen& screen : x11.screens().all()) {
    windows.push_back(x11.windows().makeWindow(blockerStyle(), screen.frame));
    windows.back()->setContent(std::make_shared<PlainView>());
  }
  return windows;
}

void Fixture::cover(const std::vector<std::shared_ptr<Window>>& windows, double alpha) {
  for (const auto& window : windows) {
    window->setAlpha(alpha);
    window->makeKeyAndOrderFront();
    window->orderFrontRegardless();
  }
}

void Fixture::fade(const std::vector<std::shared_ptr<Window>>& windows, double alpha, Seconds duration) {
  x11.windows().animateAlpha(windows, alpha, duration, TimingCurve::easeOut, [this] { ++completions; });
}

bool isComposited(const XServer& server) {
  const auto connection = server.client();
  const auto cookie = xcb_get_selection_owner(*connection, connection->atom("_NET_WM_CM_S0"));
  const auto owner = owned(xcb_get_selection_owner_reply(*connection, cookie, nullptr));
  return owner && owner->owner != XCB_NONE;
}

}  // namespace dormel::x11::test
