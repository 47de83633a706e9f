#include "platform/linux/wayland/EventTapWayland.h"

#include <algorithm>
#include <utility>

namespace dormel::wayland {

class EventTapsWayland::Source : public RunLoopSource {
 public:
  explicit Source(std::shared_ptr<State> state) : state_(std::move(state)) { ++state_->sources; }
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;
  ~Source() override { --state_->sources; }

 private:
  std::shared_ptr<State> state_;
};

class EventTapsWayland::Tap : public EventTap {
 public:
  Tap(std::shared_ptr<EventTapsWayland*> taps, std::shared_ptr<State> state)
      : taps_(std::move(taps)), state_(std::move(state)) {}
  Tap(const Tap&) = delete;
  Tap& operator=(const Tap&) = delete;
  ~Tap() override { set(false); }

  void enable(bool on) override { set(on); }
  [[nodiscard]] bool isEnabled() const override {
    return *taps_ != nullptr && state_->isWanted && (*taps_)->env_->keyboard.isHeld();
  }
  [[nodiscard]] std::unique_ptr<RunLoopSource> makeRunLoopSource() override { return std::make_unique<Source>(state_); }

 private:
  void set(bool on) {
    state_->isWanted = on;
    if (!on) state_->wasEnabled = false;
    if (*taps_ != nullptr) (*taps_)->wantedChanged();
  }

  std::shared_ptr<EventTapsWayland*> taps_;
  std::shared_ptr<State> state_;
};

EventTapsWayland::EventTapsWayland(std::shared_ptr<PanelContext> environment)
    : env_(std::move(environment)), self_(std::make_shared<EventTapsWayland*>(this)) {}

EventTapsWayland::~EventTapsWayland() { *self_ = nullptr; }

std::unique_ptr<EventTap> EventTapsWayland::create(std::function<TapVerdict(const KeyEvent&)> callback) {
  auto state = std::make_shared<State>();
  state->callback = std::move(callback);
  std::erase_if(taps_, [](const auto& weak) { return weak.expired(); });
  taps_.push_back(state);
  return std::make_unique<Tap>(self_, std::move(state));
}

void EventTapsWayland::wantedChanged() {
  env_->focus.want(std::any_of(taps_.begin(), taps_.end(), [](const auto& weak) {
    const auto state = weak.lock();
    return state && state->isWanted;
  }));
  env_->panelsChanged();
  focusChanged();
}

bool EventTapsWayland::deliver(const KeyEvent& event) {
  bool isHeard = false;
  const auto present = taps_;
  for (const auto& weak : present) {
    const auto state = weak.lock();
    if (!state || state->sources == 0) continue;
    isHeard = true;
    state->callback(event);
  }
  return isHeard;
}

void EventTapsWayland::focusChanged() {
  const bool isHeld = env_->keyboard.isHeld();
  const auto present = taps_;
  for (const auto& weak : present) {
    const auto state = weak.lock();
    if (!state || !state->isWanted) continue;
    const bool isLost = std::exchange(state->wasEnabled, isHeld) && !isHeld;
    if (isLost && state->sources > 0) state->callback({EventType::tapDisabledByUserInput, 0, 0});
  }
}

}  // namespace dormel::wayland
