#include "platform/sim/SimKeyboard.h"

#include <algorithm>
#include <array>
#include <utility>

namespace dormel {
namespace {

struct Modifier {
  KeyCode keyCode;
  EventFlags side;
  EventFlags generic;
};

constexpr std::array MODIFIERS{
    Modifier{54, 0x10, 0x100000}, Modifier{55, 0x08, 0x100000},  Modifier{56, 0x02, 0x20000},
    Modifier{58, 0x20, 0x80000},  Modifier{59, 0x01, 0x40000},   Modifier{60, 0x04, 0x20000},
    Modifier{61, 0x40, 0x80000},  Modifier{62, 0x2000, 0x40000},
};

constexpr KeyCode CAPS_LOCK = 57;

bool isModifier(KeyCode keyCode) {
  return keyCode == CAPS_LOCK ||
         std::any_of(MODIFIERS.begin(), MODIFIERS.end(), [&](const Modifier& m) { return m.keyCode == keyCode; });
}

}  // namespace

/// The handle that the process holds; what it stands for ends with it.
class SimTap : public EventTap {
 public:
  SimTap(SimKeyboard& keyboard, std::shared_ptr<SimKeyboard::TapState> state)
      : keyboard_(keyboard), state_(std::move(state)) {}
  SimTap(const SimTap&) = delete;
  SimTap& operator=(const SimTap&) = delete;
  ~SimTap() override {
    state_->wanted = false;
    keyboard_.change(state_, false);
    keyboard_.tellWanted();
  }

  void enable(bool on) override {
    state_->wanted = on;
    keyboard_.change(state_, on && !keyboard_.grabDenied_);
    keyboard_.tellWanted();
  }
  [[nodiscard]] bool isEnabled() const override { return state_->enabled; }

  [[nodiscard]] std::unique_ptr<RunLoopSource> makeRunLoopSource() override {
    class Source : public RunLoopSource {
     public:
      explicit Source(std::shared_ptr<SimKeyboard::TapState> state) : state_(std::move(state)) {
        state_->sourced = true;
      }
      Source(const Source&) = delete;
      Source& operator=(const Source&) = delete;
      ~Source() override { state_->sourced = false; }

     private:
      std::shared_ptr<SimKeyboard::TapState> state_;
    };
    return std::make_unique<Source>(state_);
  }

 private:
  SimKeyboard& keyboard_;
  std::shared_ptr<SimKeyboard::TapState> state_;
};

std::unique_ptr<EventTap> SimKeyboard::create(std::function<TapVerdict(const KeyEvent&)> callback) {
  if (tapsImpossible_ || !timeline_.processRuns()) return nullptr;
  auto state = std::make_shared<TapState>();
  state->callback = std::move(callback);
  std::erase_if(taps_, [](const auto& weak) { return weak.expired(); });
  taps_.push_back(state);
  return std::make_unique<SimTap>(*this, std::move(state));
}

Seconds SimKeyboard::secondsSinceLast(InputKind kind) const {
  if (const auto scripted = scriptedIdle_.find(kind); scripted != scriptedIdle_.end()) return scripted->second;
  const auto last = lastInput_.find(kind);
  return last == lastInput_.end() ? std::numeric_limits<Seconds>::infinity() : timeline_.uptime() - last->second;
}

void SimKeyboard::press(KeyCode keyCode) {
  if (!down_.insert(keyCode).second) return;
  touch(InputKind::keyDown);
  send(keyCode, true);
}

void SimKeyboard::release(KeyCode keyCode) {
  if (down_.erase(keyCode) != 0) send(keyCode, false);
}

void SimKeyboard::releaseAll() {
  while (!down_.empty()) release(*down_.begin());
}

void SimKeyboard::releaseUnheard(KeyCode keyCode) { down_.erase(keyCode); }

void SimKeyboard::repeat(KeyCode keyCode, bool tapToo) {
  touch(InputKind::keyDown);
  deliver({EventType::keyDown, keyCode, flags()}, tapToo);
}

void SimKeyboard::setIdle(InputKind kind, std::optional<Seconds> seconds) {
  scriptedIdle_.erase(kind);
  if (seconds) scriptedIdle_.emplace(kind, *seconds);
}

void SimKeyboard::setGrabDenied(bool denied) {
  grabDenied_ = denied;
  for (const auto& weak : taps_) {
    const auto tap = weak.lock();
    if (tap && tap->wanted) change(tap, !denied);
  }
}

void SimKeyboard::loseTap(EventType how) {
  for (const auto& weak : taps_) {
    const auto tap = weak.lock();
    if (!tap || !tap->enabled) continue;
    tap->wanted = false;
    change(tap, false);
    timeline_.addMain(0, 0, [tap, how] {
      if (tap->sourced) tap->callback({how, 0, 0});
    });
  }
}

bool SimKeyboard::isTaken() const {
  return std::any_of(taps_.begin(), taps_.end(), [](const auto& weak) {
    const auto tap = weak.lock();
    return tap && tap->enabled;
  });
}

bool SimKeyboard::isHeard() const {
  const bool byTap = std::any_of(taps_.begin(), taps_.end(), [](const auto& weak) {
    const auto tap = weak.lock();
    return tap && tap->sourced;
  });
  return byTap || (timeline_.processRuns() && windows_.hasFocus());
}

EventFlags SimKeyboard::flags() const {
  EventFlags word = 0;
  for (const Modifier& modifier : MODIFIERS) {
    if (isDown(modifier.keyCode)) word |= modifier.generic | (sidesReported_ ? modifier.side : 0);
  }
  return word;
}

void SimKeyboard::processEnded() {
  if (isTaken()) journal_.note("keyboard given back");
  for (const auto& weak : taps_) {
    if (const auto tap = weak.lock()) tap->enabled = tap->wanted = false;
  }
  taps_.clear();
}

void SimKeyboard::change(const std::shared_ptr<TapState>& tap, bool enabled) {
  const bool takenBefore = isTaken();
  tap->enabled = enabled;
  if (isTaken() != takenBefore) journal_.note(takenBefore ? "keyboard given back" : "keyboard taken");
}

void SimKeyboard::tellWanted() {
  if (!onWanted_) return;
  onWanted_(std::any_of(taps_.begin(), taps_.end(), [](const auto& weak) {
    const auto tap = weak.lock();
    return tap && tap->wanted;
  }));
}

void SimKeyboard::send(KeyCode keyCode, bool isDown) {
  const EventType letter = isDown ? EventType::keyDown : EventType::keyUp;
  deliver({isModifier(keyCode) ? EventType::flagsChanged : letter, keyCode, flags()}, true);
}

void SimKeyboard::deliver(const KeyEvent& event, bool toTap) {
  bool taken = false;
  for (auto weak = taps_.rbegin(); weak != taps_.rend() && !taken; ++weak) {
    const auto tap = weak->lock();
    if (!tap) continue;
    taken = tap->enabled;
    if (!tap->sourced || !toTap) continue;
    timeline_.addMain(0, 0, [this, tap, event, taken] {
      const TapVerdict verdict = tap->sourced ? tap->callback(event) : TapVerdict::swallow;
      if (taken && verdict == TapVerdict::pass) passOn(event);
    });
  }
  if (!taken) passOn(event);
}

void SimKeyboard::passOn(const KeyEvent& event) {
  if (timeline_.processRuns() && windows_.hasFocus()) {
    timeline_.addMain(0, 0, [this, event] { windows_.deliverKey(event); });
    return;
  }
  const bool isDown =
      event.type == EventType::keyDown || (event.type == EventType::flagsChanged && this->isDown(event.keyCode));
  if (!isDown || reachNobody_) return;
  foreignKeys_.push_back(event.keyCode);
  journal_.note("another application got key ", event.keyCode);
}

SimKeyboardLayout::SimKeyboardLayout() {
  constexpr std::array<std::pair<KeyCode, const char*>, 27> US{
      {{0, "a"},  {1, "s"},  {2, "d"},  {3, "f"},  {4, "h"},  {5, "g"},  {6, "z"},  {7, "x"},  {8, "c"},
       {9, "v"},  {11, "b"}, {12, "q"}, {13, "w"}, {14, "e"}, {15, "r"}, {16, "y"}, {17, "t"}, {31, "o"},
       {32, "u"}, {34, "i"}, {35, "p"}, {37, "l"}, {38, "j"}, {40, "k"}, {45, "n"}, {46, "m"}, {49, " "}}};
  for (const auto& [keyCode, produces] : US) keys_[keyCode] = produces;
}

std::optional<std::string> SimKeyboardLayout::translate(KeyCode keyCode) const {
  const auto key = keys_.find(keyCode);
  return key == keys_.end() ? std::nullopt : std::optional(key->second);
}

std::string SimKeyboardLayout::printedLegend(KeyCode keyCode) const {
  const auto legend = legends_.find(keyCode);
  return legend == legends_.end() ? std::string() : legend->second;
}

}  // namespace dormel
