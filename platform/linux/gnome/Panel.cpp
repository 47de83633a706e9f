#include "platform/linux/gnome/Panel.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/common/Shadow.h"

namespace dormel::gnome {
namespace {

Message placeOf(const Rect& rect) { return {rect.x, rect.y, rect.width, rect.height}; }

/// The shell paints a whole monitor for each frame.
constexpr Seconds FRAME_INTERVAL = 0.045;

int levelOf(WindowLevel level) { return static_cast<int>(level); }

}  // namespace

Panel::Panel(std::shared_ptr<Stage> stage, const WindowStyle& style, const Rect& contentRect)
    : stage_(std::move(stage)),
      style_(style),
      number_(stage_->nextNumber()),
      frame_(contentRect),
      canvas_(stage_->loop(), stage_->canvases(), style,
              {[this] { layOut(); },
               [this](const Pixels& pixels, const PixelRect& changed) { onFrame(pixels, changed); }}) {}

Panel::~Panel() { orderOut(); }

Rect Panel::area() const { return outset(frame_, shadowMargin(style_)); }

Rect Panel::reach() const {
  const double margin = shadowMargin(style_);
  return {margin, margin, frame_.width, frame_.height};
}

void Panel::say(Seconds duration, TimingCurve curve) {
  stage_->say("panel", {{"id", number_},
                        {"at", placeOf(stage_->toShell(area()))},
                        {"black", isBlack()},
                        {"level", levelOf(style_.level)},
                        {"alpha", alpha_},
                        {"fade", std::round(duration * 1000)},
                        {"curve", static_cast<int>(curve)},
                        {"pointer", !style_.ignoresMouseEvents},
                        {"reach", placeOf(reach())}});
}

void Panel::sayAll() {
  say(0, TimingCurve::linear);
  pool_ = 0;
  isFrameSaid_ = newestFrame_.is_null();
  isShellBusy_ = false;
  pace_ = {};
  if (!memory_ || isFrameSaid_) return;
  memory_->wasRead();
  pool_ = number_;
  stage_->say("pool", {{"id", pool_}}, memory_->descriptor());
  sayFrame();
}

void Panel::sayFrame() {
  if (isFrameSaid_ || isShellBusy_ || pace_ || !stage_->isHolding()) return;
  isFrameSaid_ = isShellBusy_ = true;
  memory_->isRead();
  saidSerial_ = newestFrame_["serial"];
  stage_->say("frame", newestFrame_);
  pace_ = Timer::once(stage_->loop(), FRAME_INTERVAL, [this] {
    pace_ = {};
    sayFrame();
  });
}

void Panel::setFrame(const Rect& frame) {
  if (frame == frame_) return;
  frame_ = frame;
  if (!isVisible_) return;
  say(0, TimingCurve::linear);
  canvas_.layOutLater();
}

void Panel::fadeTo(double alpha, Seconds duration, TimingCurve curve) {
  alpha_ = std::clamp(alpha, 0.0, 1.0);
  isFading_ = duration > 0;
  fadeEnd_ = {};
  if (isFading_) {
    fadeEnd_ = Timer::once(stage_->loop(), duration, [this] {
      isFading_ = false;
      stage_->panelsChanged();
    });
  }
  if (!isVisible_) return;
  say(duration, curve);
  stage_->panelsChanged();
}

void Panel::orderFrontRegardless() {
  const bool isNew = !std::exchange(isVisible_, true);
  if (!stage_->raised(shared_from_this())) say(0, TimingCurve::linear);
  if (isNew) canvas_.show();
}

void Panel::orderOut() {
  if (!std::exchange(isVisible_, false)) return;
  isFading_ = false;
  fadeEnd_ = {};
  canvas_.hide();
  stage_->say("drop", {{"id", number_}});
  if (pool_ != 0) stage_->say("unpool", {{"id", pool_}});
  pool_ = 0;
  memory_.reset();
  newestFrame_ = nullptr;
  isFrameSaid_ = true;
  isShellBusy_ = false;
  pace_ = {};
  stage_->panelsChanged();
}

void Panel::monitorsChanged() {
  if (!isVisible_) return;
  say(0, TimingCurve::linear);
  canvas_.layOutLater();
}

Rect Panel::contentPlace() const {
  const auto [width, height] = canvas_.size();
  if (!isBlack()) return {0, 0, width, height};
  return {std::floor((frame_.width - width) / 2), std::floor((frame_.height - height) / 2), width, height};
}

void Panel::layOut() {
  if (isVisible_) canvas_.fit({area().width, area().height}, stage_->scaleAt(stage_->toShell(area())));
}

void Panel::onFrame(const Pixels& pixels, const PixelRect& changed) {
  if (!isVisible_ || pixels.width < 1 || pixels.height < 1) return;
  PixelRect area = changed;
  if (!memory_ || !memory_->fits(pixels)) {
    memory_ = std::make_unique<FrameMemory>(pixels.width, pixels.height);
    area = {0, 0, pixels.width, pixels.height};
    pool_ = 0;
    isShellBusy_ = false;
  }
  const std::uint64_t serial = stage_->nextSerial();
  const std::int64_t offset = memory_->write(pixels, area);
  if (offset < 0) return;
  if (pool_ == 0) {
    pool_ = number_;
    stage_->say("pool", {{"id", pool_}}, memory_->descriptor());
  }
  newestFrame_ = {{"serial", serial},        {"pool", pool_},
                  {"offset", offset},        {"width", pixels.width},
                  {"height", pixels.height}, {"stride", std::int64_t{pixels.width} * 4},
                  {"panels", {number_}},     {"at", placeOf(contentPlace())}};
  isFrameSaid_ = false;
  sayFrame();
}

void Panel::heard(const std::string& kind, const Message& body) {
  if (kind == "frame") {
    if (!memory_ || !isShellBusy_ || body.value("serial", std::uint64_t{0}) != saidSerial_) return;
    memory_->wasRead();
    isShellBusy_ = false;
    sayFrame();
  } else if (body.value("panel", 0) == number_) {
    onPointer(body);
  }
}

void Panel::onPointer(const Message& body) {
  const std::string action = body.value("action", "");
  const double x = body.value("x", 0.0);
  const double y = body.value("y", 0.0);
  constexpr std::pair<const char*, PointerAction> ACTIONS[] = {
      {"press", PointerAction::press}, {"release", PointerAction::release}, {"leave", PointerAction::leave}};
  const auto* const found =
      std::find_if(std::begin(ACTIONS), std::end(ACTIONS), [&](const auto& one) { return one.first == action; });
  const PointerAction told = found == std::end(ACTIONS) ? PointerAction::move : found->second;
  const auto self = shared_from_this();  // a press may take the panel away
  const Rect place = contentPlace();
  if (const auto move = canvas_.pointer(told, x - place.x, y - place.y)) {
    setFrame({frame_.x + move->right, frame_.y - move->down, frame_.width, frame_.height});
  }
}

void Panel::key(const KeyEvent& event) {
  const auto handler = keyHandler_;
  if (handler) handler(event);
}

}  // namespace dormel::gnome
