#include "platform/linux/wayland/Panel.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/common/Shadow.h"
#include "platform/linux/wayland/Protocols.h"

namespace dormel::wayland {
namespace {

constexpr int PUT_BACK_LATER_MILLISECONDS = 100;
constexpr std::size_t MOST_PUT_BACKS = 20;  // in a second

}  // namespace

PanelContext::PanelContext(Connection& theConnection, EventLoop& theLoop, Outputs& theOutputs, Keyboard& theKeyboard,
                           Pointer& thePointer, CanvasFactory& theCanvases, const Clock& theClock,
                           const std::string& lockMark)
    : connection(theConnection),
      loop(theLoop),
      outputs(theOutputs),
      keyboard(theKeyboard),
      pointer(thePointer),
      canvases(theCanvases),
      clock(theClock),
      shades(connection.globals().shm.get()),
      inhibitors(connection, keyboard),
      lock(connection, outputs, shades, lockMark),
      focus(clock, {[this] { return keyboard.isHeld(); },
                    [this] {
                      const auto visible = visiblePanels();
                      const bool isAsked = std::any_of(visible.rbegin(), visible.rend(),
                                                       [](const auto& panel) { return panel->askForKeyboardAgain(); });
                      if (!isAsked && holder) holder->askForKeyboardAgain();
                      if (!isAsked) updateHolder.ask();
                    },
                    [this] {
                      isFreshHolderWanted = true;
                      holder.reset();
                      updateHolder.ask();
                    }}),
      updateHolder(loop, [this] { panelsChanged(); }) {
  lock.setOnChange([this] { lockChanged(); });
  lock.setOnSurface([this](wl_surface* surface, bool isThere) {
    if (!isThere) return pointer.remove(surface);
    Pointer::Target hidden;
    hidden.isHidden = true;
    pointer.add(surface, std::move(hidden));
  });
}

std::vector<std::shared_ptr<Panel>> PanelContext::visiblePanels() const {
  std::vector<std::shared_ptr<Panel>> visible;
  for (const auto& weak : panels) {
    auto panel = weak.lock();
    if (panel && panel->isVisible()) visible.push_back(std::move(panel));
  }
  return visible;
}

KeyboardUse PanelContext::keyboardUse() const { return lock.isRefused() ? KeyboardUse::none : KeyboardUse::exclusive; }

void PanelContext::panelsChanged() {
  bool isAnyBlack = false;
  bool isAllBlack = true;
  bool isLowering = false;
  bool keepsKeyboard = false;
  for (const auto& panel : visiblePanels()) {
    keepsKeyboard = keepsKeyboard || (panel->isKey() && !panel->isLowering());
    if (!panel->isBlack()) continue;
    isAnyBlack = true;
    isAllBlack = isAllBlack && panel->alpha() >= 1;
    isLowering = isLowering || panel->isLowering();
  }
  lock.stages().setCovered(isAnyBlack && isAllBlack);
  lock.stages().setLowering(isLowering);
  lock.apply();

  if (!focus.isWanted()) isFreshHolderWanted = false;
  const bool isWanted =
      focus.isWanted() && !lock.isRefused() && (!keepsKeyboard || isFreshHolderWanted) && outputs.main();
  if (!isWanted) {
    if (holder) inhibitors.remove(holder->surface());
    holder.reset();
    return;
  }
  if (holder) return;
  const auto output = outputs.showing(outputs.main()->frame);
  if (!output) return;
  // It is there before the last panel goes, so that no key falls between the two.
  const Placement point{Placement::Corner{false, false, 0, 0, {1, 1}}};
  holder = std::make_unique<LayerShellSurface>(connection, shades, output, point, KeyboardUse::exclusive, [this] {
    loop.async([this] {
      if (holder) inhibitors.remove(holder->surface());
      holder.reset();
      updateHolder.ask();
    });
  });
  inhibitors.add(holder->surface());
  connection.flush();
}

void PanelContext::outputsChanged() {
  lock.lookAtOutputs();
  for (const auto& panel : visiblePanels()) panel->outputsChanged();
  focus.look();
}

void PanelContext::lockChanged() {
  focus.setUnderLock(lock.isUp());
  for (const auto& panel : visiblePanels()) {
    panel->setKeyboardUse(keyboardUse());
    panel->lockChanged();
  }
  focus.setYielding(lock.isRefused());
  updateHolder.ask();
  connection.flush();
}

void PanelContext::keyboardChanged() { focus.look(); }

void PanelContext::deliver(const KeyEvent& event) {
  const auto visible = visiblePanels();
  const auto front = std::find_if(visible.rbegin(), visible.rend(), [](const auto& panel) { return panel->isKey(); });
  if (event.type == EventType::keyDown && keyMonitors.swallow(event)) return;
  if (front != visible.rend()) (*front)->key(event);
}

Panel::Panel(std::shared_ptr<PanelContext> environment, const WindowStyle& style, const Rect& contentRect)
    : env_(std::move(environment)),
      style_(style),
      frame_(contentRect),
      content_(env_->connection, isBlack()),
      canvas_(
          env_->loop, env_->canvases, style,
          {[this] { layOut(); }, [this](const Pixels& pixels, const PixelRect& changed) { onFrame(pixels, changed); }}),
      putBackBudget_(env_->clock, MOST_PUT_BACKS, 1.0),
      putBackLater_(
          env_->loop,
          [this] {
            if (isVisible_ && !layer_) makeLayer();
          },
          PUT_BACK_LATER_MILLISECONDS) {}

Panel::~Panel() { orderOut(); }

Placement Panel::placement(const Output& output) const {
  if (isBlack()) return {};
  Rect screen = frame_;
  for (const Screen& one : env_->outputs.all()) {
    if (one.name == output.name) screen = one.frame;
  }
  const auto points = [](double distance) { return static_cast<int>(std::lround(distance)); };
  Placement::Corner corner;
  const Rect surface = outset(frame_, shadowMargin(style_));
  corner.size = {surface.width, surface.height};
  corner.right = screen.right() - surface.right() < surface.x - screen.x;
  corner.bottom = surface.y - screen.y < screen.top() - surface.top();
  corner.horizontal = points(corner.right ? screen.right() - surface.right() : surface.x - screen.x);
  corner.vertical = points(corner.bottom ? surface.y - screen.y : screen.top() - surface.top());
  return {corner};
}

void Panel::makeLayer() {
  const auto output = env_->outputs.showing(frame_);
  if (!output) return;  // it comes up with the next output that shows its place
  const KeyboardUse use = isKey() ? env_->keyboardUse() : KeyboardUse::none;
  layer_ = std::make_unique<LayerShellSurface>(env_->connection, env_->shades, output, placement(*output), use, [this] {
    // Not while the surface itself is calling.
    env_->loop.async([weak = weak_from_this()] {
      const auto self = weak.lock();
      if (!self || !self->layer_) return;
      self->dropLayer();
      if (self->putBackBudget_.spend()) self->putBackLater_.ask();
    });
  });
  env_->pointer.add(layer_->surface(), target());
  if (isKey()) env_->inhibitors.add(layer_->surface());
  keepShadowFromPointer();
  layer_->setBlack(isBlack() ? alpha_ : 0);
  layer_->setOnLayout([this] { canvas_.layOutLater(); });
}

void Panel::keepShadowFromPointer() {
  const auto margin = static_cast<std::int32_t>(shadowMargin(style_));
  if (margin == 0) return;
  const Owned<wl_region> within(wl_compositor_create_region(env_->connection.globals().compositor.get()));
  wl_region_add(within.get(), margin, margin, static_cast<std::int32_t>(frame_.width),
                static_cast<std::int32_t>(frame_.height));
  wl_surface_set_input_region(layer_->surface(), within.get());
}

void Panel::dropLayer() {
  if (!layer_) return;
  if (standing_ == layer_.get()) {
    content_.standOn(nullptr);
    standing_ = nullptr;
  }
  env_->pointer.remove(layer_->surface());
  env_->inhibitors.remove(layer_->surface());
  layer_.reset();
}

Pointer::Target Panel::target() {
  Pointer::Target target;
  target.isHidden = isBlack();
  if (style_.ignoresMouseEvents) return target;
  target.onButton = [this](double x, double y, bool isPress) {
    onPointer(isPress ? PointerAction::press : PointerAction::release, x, y);
  };
  // A blocker has nothing that answers to a pointer passing by; why wake up for it.
  if (isBlack()) return target;
  target.onMove = [this](double x, double y) { onPointer(PointerAction::move, x, y); };
  target.onLeave = [this] { onPointer(PointerAction::leave, 0, 0); };
  return target;
}

void Panel::onPointer(PointerAction action, double x, double y) {
  if (isBlack() && standing_ != nullptr) {
    x -= std::floor((standing_->size().width - canvas_.size().width) / 2);
    y -= std::floor((standing_->size().height - canvas_.size().height) / 2);
  }
  if (const auto move = canvas_.pointer(action, x, y)) {
    setFrame({frame_.x + move->right, frame_.y - move->down, frame_.width, frame_.height});
  }
}

void Panel::setFrame(const Rect& frame) {
  frame_ = frame;
  if (!layer_) return;
  const auto output = env_->outputs.showing(frame_);
  if (output && output == layer_->output()) {
    keepShadowFromPointer();
    layer_->place(placement(*output));
  } else if (isVisible_) {
    dropLayer();
    makeLayer();
    stand();
  }
  canvas_.layOutLater();
}

void Panel::setContent(std::shared_ptr<View> view) {
  content_.clear();
  canvas_.setView(std::move(view));
}

void Panel::orderFrontRegardless() {
  if (!std::exchange(isVisible_, true)) {
    isLowering_ = false;
    std::erase_if(env_->panels, [&](const auto& weak) { return weak.expired() || weak.lock().get() == this; });
    env_->panels.push_back(weak_from_this());
    makeLayer();
    stand();
    canvas_.show();
    env_->panelsChanged();
  }
  env_->connection.flush();
}

void Panel::orderOut() {
  if (!std::exchange(isVisible_, false)) return;
  env_->panelsChanged();
  if (standing_ != nullptr) content_.standOn(nullptr);
  standing_ = nullptr;
  dropLayer();
  putBackLater_.forget();
  env_->connection.flush();
  canvas_.hide();
}

void Panel::setAlpha(double alpha) {
  static_cast<void>(beginFade());
  setFadedAlpha(alpha);
}

void Panel::setFadedAlpha(double alpha) {
  alpha = std::clamp(alpha, 0.0, 1.0);
  if (alpha != alpha_) isLowering_ = isVisible_ && alpha < alpha_;
  alpha_ = alpha;
  if (isBlack()) env_->panelsChanged();
  paint();
  env_->connection.flush();
}

void Panel::paint() {
  const bool isUnderLock = standing_ != nullptr && standing_ != layer_.get();
  content_.setAlpha(isUnderLock ? 1 : alpha_);
  if (!layer_) return;
  layer_->setBlack(isBlack() ? alpha_ : 0);
  layer_->commit();
}

void Panel::outputsChanged() {
  if (!isVisible_) return;
  const auto output = env_->outputs.showing(frame_);
  if (layer_ && (!output || output != layer_->output())) dropLayer();
  if (!layer_) makeLayer();
  stand();
}

void Panel::lockChanged() {
  if (!isVisible_) return;
  stand();
  paint();
}

void Panel::setKeyboardUse(KeyboardUse use) {
  if (!layer_ || !isKey()) return;
  layer_->setKeyboardUse(use);
  layer_->commit();
}

bool Panel::askForKeyboardAgain() {
  if (!layer_ || !isKey() || env_->keyboardUse() == KeyboardUse::none) return false;
  layer_->askForKeyboardAgain();
  env_->connection.flush();
  return true;
}

void Panel::stand() {
  OutputSurface* surface = layer_.get();
  if (isBlack() && layer_) {
    if (OutputSurface* const locked = env_->lock.surfaceOn(*layer_->output())) surface = locked;
  }
  const bool isOther = std::exchange(standing_, surface) != surface;
  if (isOther) content_.standOn(surface != nullptr ? surface->surface() : nullptr);
  if (surface == nullptr) return;
  // The lock's surfaces outlive panels, and another panel may have stood here while outputs changed.
  surface->setOnLayout([weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->canvas_.layOutLater();
  });
  if (isOther) {
    layOut();
  } else {
    canvas_.layOutLater();
  }
}

void Panel::layOut() {
  if (standing_ == nullptr || standing_->size().width < 1) return;
  canvas_.fit(standing_->size(), standing_->scale());
  content_.layOut(standing_->size(), isBlack());
  standing_->commit();
  env_->connection.flush();
}

void Panel::onFrame(const Pixels& pixels, const PixelRect& changed) {
  content_.update(pixels, changed, canvas_.size());
  if (standing_ != nullptr && content_.isMoved(standing_->size(), isBlack())) {
    content_.layOut(standing_->size(), isBlack());
    standing_->commit();
  }
  env_->connection.flush();
}

void Panel::key(const KeyEvent& event) {
  const auto handler = keyHandler_;
  if (handler) handler(event);
}

}  // namespace dormel::wayland
