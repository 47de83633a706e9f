#include "platform/sim/SimWindows.h"

#include <algorithm>
#include <iomanip>
#include <utility>

namespace dormel {
namespace {

constexpr Seconds FRAME = 1.0 / 60;

using KeyMonitors = std::vector<std::shared_ptr<std::function<bool(const KeyEvent&)>>>;

double eased(TimingCurve curve, double t) {
  switch (curve) {
    case TimingCurve::linear:
      return t;
    case TimingCurve::easeIn:
      return t * t;
    case TimingCurve::easeOut:
      return 1 - (1 - t) * (1 - t);
    case TimingCurve::easeInOut:
      return t < 0.5 ? 2 * t * t : 1 - 2 * (1 - t) * (1 - t);
  }
  return t;
}

const char* nameOf(TimingCurve curve) {
  switch (curve) {
    case TimingCurve::linear:
      return "linear";
    case TimingCurve::easeIn:
      return "ease-in";
    case TimingCurve::easeOut:
      return "ease-out";
    case TimingCurve::easeInOut:
      return "ease-in-out";
  }
  return "";
}

const char* nameOf(WindowLevel level) {
  switch (level) {
    case WindowLevel::floating:
      return "floating";
    case WindowLevel::status:
      return "above the floating ones";
    case WindowLevel::screenSaver:
      return "above everything";
  }
  return "";
}

std::string shown(const Rect& rect) {
  std::ostringstream text;
  text << rect.x << ',' << rect.y << ' ' << rect.width << 'x' << rect.height;
  return text.str();
}

}  // namespace

SimWindow::SimWindow(SimWindowServer& server, int number, const WindowStyle& style, const Rect& frame)
    : server_(server), number_(number), style_(style), frame_(frame), area_(server.screens_.space().toPixels(frame)) {}

SimWindow::~SimWindow() { server_.hide(*this); }

void SimWindow::setFrame(const Rect& frame) {
  if (frame == frame_) return;
  frame_ = frame;
  area_ = server_.screens_.space().toPixels(frame);
  server_.journal_.note("window ", number_, " frame ", shown(frame));
  server_.checkCover();
}

void SimWindow::setContent(std::shared_ptr<View> view) {
  canvas_.reset();
  content_ = std::move(view);
  if (visible_) showContent();
}

void SimWindow::showContent() {
  if (server_.canvases_ == nullptr || !content_) return;
  // In a later turn, as the real ones do: covering waits for nothing.
  server_.timeline_.addMain(0, 0, [weak = weak_from_this()] {
    const auto self = weak.lock();
    if (!self || !self->visible_) return;
    if (!self->canvas_) {
      self->canvas_ = self->server_.canvases_->make(self->content_);
      // Few pixels: what matters is whose they are.
      constexpr double SCALE = 0.1;
      self->canvas_->resize(self->canvas_->fittingSize(), SCALE);
      self->canvas_->setOnFrame([window = self.get()](const Pixels& pixels, const PixelRect& /*changed*/) {
        window->corner_ = *pixels.data;
        ++window->frames_;
      });
    }
    self->canvas_->setShowing(true);
  });
}

Size SimWindow::contentFittingSize() const {
  return content_ && server_.fittingSize_ ? server_.fittingSize_(*content_) : Size{};
}

double SimWindow::alpha() const {
  if (alphaDuration_ <= 0) return alpha_;
  const double t = std::min(1.0, (server_.timeline_.uptime() - alphaSince_) / alphaDuration_);
  return alphaFrom_ + (alpha_ - alphaFrom_) * eased(curve_, t);
}

void SimWindow::setAlpha(double alpha) {
  if (this->alpha() != alpha) lowering_ = visible_ && alpha < this->alpha();
  if (this->alpha() != alpha) server_.journal_.note("window ", number_, " alpha ", alpha);
  alpha_ = alpha;
  alphaDuration_ = 0;
  server_.checkCover();
  server_.panelsChanged();
}

void SimWindow::animate(double to, Seconds duration, TimingCurve curve) {
  alphaFrom_ = alpha();
  alpha_ = to;
  alphaSince_ = server_.timeline_.uptime();
  alphaDuration_ = duration;
  curve_ = curve;
  if (alpha_ != alphaFrom_) lowering_ = visible_ && alpha_ < alphaFrom_;
}

void SimWindow::makeKeyAndOrderFront() {
  orderFrontRegardless();
  server_.makeKey(*this);
}

void SimWindow::orderFrontRegardless() { server_.show(*this); }

void SimWindow::orderOut() { server_.hide(*this); }

std::shared_ptr<Window> SimWindowServer::makeWindow(const WindowStyle& style, const Rect& contentRect) {
  auto window = std::make_shared<SimWindow>(*this, ++lastNumber_, style, contentRect);
  std::erase_if(windows_, [](const auto& weak) { return weak.expired(); });
  windows_.push_back(window);
  journal_.note("window ", window->number_, " made, ", nameOf(style.level), ", ", shown(contentRect));
  return window;
}

void SimWindowServer::animateAlpha(const std::vector<std::shared_ptr<Window>>& windows, double alpha, Seconds duration,
                                   TimingCurve curve, Task completion) {
  for (const auto& window : windows) {
    auto& animated = static_cast<SimWindow&>(*window);
    animated.animate(alpha, duration, curve);
    journal_.note("window ", animated.number_, " fades to ", alpha, " in ", duration, " s ", nameOf(curve));
  }
  panelsChanged();
  timeline_.addMain(duration, 0, [this, done = std::move(completion)] {
    checkCover();
    panelsChanged();
    if (done) done();
  });
}

std::unique_ptr<Registration> SimWindowServer::addLocalKeyDownMonitor(std::function<bool(const KeyEvent&)> monitor) {
  class Monitor : public Registration {
   public:
    Monitor(std::weak_ptr<KeyMonitors> monitors, std::shared_ptr<std::function<bool(const KeyEvent&)>> mine)
        : monitors_(std::move(monitors)), mine_(std::move(mine)) {}
    Monitor(const Monitor&) = delete;
    Monitor& operator=(const Monitor&) = delete;
    ~Monitor() override {
      if (const auto monitors = monitors_.lock()) std::erase(*monitors, mine_);
    }

   private:
    std::weak_ptr<KeyMonitors> monitors_;
    std::shared_ptr<std::function<bool(const KeyEvent&)>> mine_;
  };
  monitors_->push_back(std::make_shared<std::function<bool(const KeyEvent&)>>(std::move(monitor)));
  return std::make_unique<Monitor>(monitors_, monitors_->back());
}

std::unique_ptr<Registration> SimWindowServer::makeDisplayLink(Task onFrame) {
  class Link : public Registration {
   public:
    Link(SimTimeline& timeline, Task onFrame)
        : timeline_(timeline), id_(timeline.addMain(FRAME, FRAME, std::move(onFrame))) {}
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;
    ~Link() override { timeline_.cancelMain(id_); }

   private:
    SimTimeline& timeline_;
    std::uint64_t id_;
  };
  return std::make_unique<Link>(timeline_, std::move(onFrame));
}

std::vector<SimWindow*> SimWindowServer::visible() const {
  std::vector<SimWindow*> stacked = order_;
  std::stable_sort(stacked.begin(), stacked.end(),
                   [](const SimWindow* a, const SimWindow* b) { return a->style_.level < b->style_.level; });
  return stacked;
}

double SimWindowServer::cover(const PixelRect& area) const {
  double through = 1;
  for (const SimWindow* window : order_) {
    const WindowStyle& style = window->style_;
    const bool blocks = style.level == WindowLevel::screenSaver && style.background == WindowBackground::black &&
                        style.isOpaque && contains(window->area_, area);
    if (blocks) through *= 1 - window->alpha();
  }
  return 1 - through;
}

double SimWindowServer::cover() const {
  double least = 1;
  for (const PixelRect& screen : screens_.pixels()) least = std::min(least, cover(screen));
  return least;
}

void SimWindowServer::watchCover() {
  watching_ = true;
  watched_ = screens_.pixels();
  leastCover_ = 1;
  checkCover();
}

void SimWindowServer::stealFocus() {
  if (keyWindow_ != nullptr) journal_.note("window ", keyWindow_->number_, " lost the focus");
  keyWindow_ = nullptr;
  ordinaryFocus_ = false;
}

bool SimWindowServer::deliverKey(const KeyEvent& event) {
  SimWindow* const window = keyWindow_;
  if (!hasFocus()) return false;
  if (event.type == EventType::keyDown) {
    const KeyMonitors now = *monitors_;
    for (const auto& monitor : now) {
      if ((*monitor)(event)) return true;
    }
  }
  // An ordinary window does nothing with keys, and one that a monitor closed hears of nothing.
  if (window == nullptr || keyWindow_ != window) return true;
  if (const auto handler = window->keyHandler_) handler(event);
  return true;
}

void SimWindowServer::processEnded() {
  if (!order_.empty()) journal_.note("windows gone with the process");
  for (SimWindow* window : order_) {
    window->visible_ = false;
    window->canvas_.reset();
  }
  order_.clear();
  keyWindow_ = nullptr;
  ordinaryFocus_ = false;
  monitors_->clear();
  checkCover();
}

void SimWindowServer::show(SimWindow& window) {
  if (!timeline_.processRuns()) return;
  if (window.visible_) {
    if (order_.back() == &window) return;
    std::erase(order_, &window);
    order_.push_back(&window);
    journal_.note("window ", window.number_, " front");
    return;
  }
  window.visible_ = true;
  window.lowering_ = false;
  order_.push_back(&window);
  journal_.note("window ", window.number_, " in");
  checkCover();
  window.showContent();
  panelsChanged();
  if (window.content_ && !std::exchange(window.shownBefore_, true)) tellFirstShown(window.content_);
}

void SimWindowServer::tellFirstShown(const std::weak_ptr<View>& content) {
  if (!firstShown_) return;
  timeline_.addMain(0, 0, [this, weak = content] {
    const auto view = weak.lock();
    if (view && firstShown_) firstShown_(*view);
  });
}

void SimWindowServer::hide(SimWindow& window) {
  if (!window.visible_) return;
  window.visible_ = false;
  if (window.canvas_) window.canvas_->setShowing(false);
  std::erase(order_, &window);
  journal_.note("window ", window.number_, " out");
  if (keyWindow_ == &window) {
    // The focus goes to the next window of ours that can have it, else to another application.
    const auto next =
        std::find_if(order_.rbegin(), order_.rend(), [](const SimWindow* w) { return w->style_.canBecomeKey; });
    keyWindow_ = next == order_.rend() ? nullptr : *next;
  }
  checkCover();
  panelsChanged();
}

void SimWindowServer::makeKey(SimWindow& window) {
  if (!window.visible_ || !window.style_.canBecomeKey || keyWindow_ == &window) return;
  keyWindow_ = &window;
}

void SimWindowServer::checkCover() {
  if (!watching_) return;
  for (const PixelRect& screen : screens_.pixels()) {
    const bool watched = std::find(watched_.begin(), watched_.end(), screen) != watched_.end();
    if (watched) leastCover_ = std::min(leastCover_, cover(screen));
  }
}

void SimWindowServer::screensChanged() {
  timeline_.addMain(0, 0, [this] { placeAnew(); });
}

void SimWindowServer::placeAnew() {
  bool moved = false;
  for (const auto& weak : windows_) {
    const auto window = weak.lock();
    const PixelRect area = window ? screens_.space().toPixels(window->frame_) : PixelRect{};
    if (!window || window->area_ == area) continue;
    window->area_ = area;
    moved = true;
    if (window->visible_) journal_.note("window ", window->number_, " placed anew");
  }
  if (moved) checkCover();
}

}  // namespace dormel
