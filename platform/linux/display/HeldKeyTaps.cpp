#include "platform/linux/display/HeldKeyTaps.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace dormel {

struct HeldKeyTaps::State {
  std::function<TapVerdict(const KeyEvent&)> callback;
  bool isWanted = false;
  bool wasEnabled = false;
  int sources = 0;
};

struct HeldKeyTaps::Shared {
  void wantedChanged() {
    if (!keys) return;
    keys->want(std::any_of(taps.begin(), taps.end(), [](const auto& weak) {
      const auto state = weak.lock();
      return state && state->isWanted;
    }));
    heldChanged();
  }
  void heldChanged() {
    const bool areHeld = keys->areHeld();
    const auto present = taps;
    for (const auto& weak : present) {
      const auto state = weak.lock();
      if (!state || !state->isWanted) continue;
      const bool isLost = std::exchange(state->wasEnabled, areHeld) && !areHeld;
      if (isLost && state->sources > 0) state->callback({EventType::tapDisabledByUserInput, 0, 0});
    }
  }

  std::optional<Keys> keys;  ///< none once the taps' maker has gone
  std::vector<std::weak_ptr<State>> taps;
};

class HeldKeyTaps::Source final : public RunLoopSource {
 public:
  explicit Source(std::shared_ptr<State> state) : state_(std::move(state)) { ++state_->sources; }
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;
  ~Source() override { --state_->sources; }

 private:
  std::shared_ptr<State> state_;
};

class HeldKeyTaps::Tap final : public EventTap {
 public:
  Tap(std::shared_ptr<Shared> shared, std::shared_ptr<State> state)
      : shared_(std::move(shared)), state_(std::move(state)) {}
  Tap(const Tap&) = delete;
  Tap& operator=(const Tap&) = delete;
  ~Tap() override { set(false); }

  void enable(bool on) override { set(on); }
  [[nodiscard]] bool isEnabled() const override {
    return state_->isWanted && shared_->keys && shared_->keys->areHeld();
  }
  [[nodiscard]] std::unique_ptr<RunLoopSource> makeRunLoopSource() override { return std::make_unique<Source>(state_); }

 private:
  void set(bool on) {
    state_->isWanted = on;
    if (!on) state_->wasEnabled = false;
    shared_->wantedChanged();
  }

  std::shared_ptr<Shared> shared_;
  std::shared_ptr<State> state_;
};

HeldKeyTaps::HeldKeyTaps(Keys keys) : shared_(std::make_shared<Shared>()) { shared_->keys = std::move(keys); }

HeldKeyTaps::~HeldKeyTaps() { shared_->keys.reset(); }

std::unique_ptr<EventTap> HeldKeyTaps::create(std::function<TapVerdict(const KeyEvent&)> callback) {
  auto state = std::make_shared<State>();
  state->callback = std::move(callback);
  std::erase_if(shared_->taps, [](const auto& weak) { return weak.expired(); });
  shared_->taps.push_back(state);
  return std::make_unique<Tap>(shared_, std::move(state));
}

bool HeldKeyTaps::deliver(const KeyEvent& event) {
  bool isHeard = false;
  const auto present = shared_->taps;
  for (const auto& weak : present) {
    const auto state = weak.lock();
    if (!state || state->sources == 0) continue;
    isHeard = true;
    state->callback(event);
  }
  return isHeard;
}

void HeldKeyTaps::heldChanged() { shared_->heldChanged(); }

}  // namespace dormel
