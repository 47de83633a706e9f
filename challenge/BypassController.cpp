#include "challenge/BypassController.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "challenge/Shuffle.h"
#include "core/DebugLog.h"
#include "platform/Keyboard.h"
#include "platform/Platform.h"

namespace dormel {
namespace {

constexpr Seconds POLL_INTERVAL = 0.05;
constexpr Seconds RESHUFFLE_NOTICE = 1.5;
constexpr Seconds HEARTBEAT = 0.5;

Seconds uptime() { return platform().clock.uptime(); }

bool isHardwareDown(KeyCode keyCode) { return platform().hardwareKeys.isDown(keyCode); }

bool debugEnabled() { return DebugLog::shared().enabled(); }

void debugLine(const std::string& message) { DebugLog::shared().append(message); }

template <typename Table>
std::vector<KeyPool> modifierPool(const Table& table) {
  std::vector<KeyPool> pool;
  pool.reserve(table.size());
  for (const ModifierRow& row : table) pool.push_back({row.label, row.keyCode, true});
  return pool;
}

template <typename Modifiers, typename Letters>
std::vector<KeyPool> poolOf(const Modifiers& modifiers, const Letters& letters) {
  std::vector<KeyPool> pool = modifierPool(modifiers);
  for (const LetterRow& row : letters) pool.push_back({row.fallbackLabel, row.keyCode, false});
  return pool;
}

RequiredKey required(const KeyPool& key) { return {key.label, key.keyCode, key.isModifier}; }

void appendRandomLetters(const std::vector<KeyPool>& pool, int count, std::vector<RequiredKey>& keys) {
  std::vector<KeyPool> letters;
  std::copy_if(pool.begin(), pool.end(), std::back_inserter(letters), [](const KeyPool& k) { return !k.isModifier; });
  letters = shuffled(std::move(letters));
  const std::size_t taken = std::min(letters.size(), static_cast<std::size_t>(std::max(count, 0)));
  for (std::size_t i = 0; i < taken; ++i) keys.push_back(required(letters[i]));
}

template <typename... Args>
std::string formatted(const char* pattern, Args... args) {
  std::array<char, 96> text{};
  std::snprintf(text.data(), text.size(), pattern, args...);
  return text.data();
}

}  // namespace

bool KeyCodeSet::contains(KeyCode keyCode) const { return std::binary_search(codes_.begin(), codes_.end(), keyCode); }

void KeyCodeSet::insert(KeyCode keyCode) {
  const auto at = std::lower_bound(codes_.begin(), codes_.end(), keyCode);
  if (at == codes_.end() || *at != keyCode) codes_.insert(at, keyCode);
}

void KeyCodeSet::erase(KeyCode keyCode) {
  const auto at = std::lower_bound(codes_.begin(), codes_.end(), keyCode);
  if (at != codes_.end() && *at == keyCode) codes_.erase(at);
}

std::shared_ptr<BypassController> BypassController::create() {
  std::shared_ptr<BypassController> controller(new BypassController);
  controller->pickRandomKeys(false);
  platform().runLoop.async([weak = std::weak_ptr(controller)] {
    if (const auto self = weak.lock()) self->resolveKeyboard();
  });
  return controller;
}

BypassController::BypassController()
    : leftKeys_(poolOf(LEFT_MODIFIERS, LEFT_LETTERS)), rightKeys_(poolOf(RIGHT_MODIFIERS, RIGHT_LETTERS)) {}

void BypassController::resolveKeyboard() {
  if (std::exchange(isResolved_, true)) return;
  for (std::vector<KeyPool>* const pool : {&leftKeys_, &rightKeys_}) {
    for (KeyPool& key : *pool) {
      if (!key.isModifier) key.label = labelForKeyCode(key.keyCode).value_or(key.label);
      for (RequiredKey& drawn : requiredKeys_.unobserved()) {
        if (drawn.keyCode == key.keyCode) drawn.label = key.label;
      }
    }
  }
  legends_ = keyLegends();
}

void BypassController::pickRandomKeys(bool announce) {
  const KeyPool left = shuffled(modifierPool(LEFT_MODIFIERS)).front();
  const std::string leftType = modifierType(left.keyCode);
  const std::vector<KeyPool> rights = shuffled(modifierPool(RIGHT_MODIFIERS));
  const auto other = std::find_if(rights.begin(), rights.end(),
                                  [&](const KeyPool& key) { return modifierType(key.keyCode) != leftType; });
  const KeyPool right = other != rights.end() ? *other : shuffled(modifierPool(RIGHT_MODIFIERS)).front();

  std::vector<RequiredKey> keys{required(left), required(right)};
  const int remaining = BYPASS_KEY_COUNT - 2;
  const int leftCount = (remaining + 1) / 2;
  appendRandomLetters(leftKeys_, leftCount, keys);
  appendRandomLetters(rightKeys_, remaining - leftCount, keys);
  requiredKeys_ = std::move(keys);
  reset();

  if (debugEnabled()) {
    std::string line = "⟳ keys:";
    for (const RequiredKey& key : requiredKeys()) line += " " + key.label;
    debugLine(line);
  }
  if (!announce) return;
  justReshuffled_ = true;
  reshuffleTimer_ = Timer::once(RESHUFFLE_NOTICE, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->justReshuffled_ = false;
  });
}

void BypassController::reset() {
  allHeldSince_ = std::nullopt;
  pressedKeys_ = KeyCodeSet{};
  progressTimer_.invalidate();
  debugWasAllHeld_ = false;
}

void BypassController::handleKeyDown(KeyCode keyCode) {
  if (keyCode == keyCode::space) {
    if (std::exchange(spaceHeld_, true)) return;
    pickRandomKeys(true);
    return;
  }
  if (!isRequired(keyCode) || pressedKeys_->contains(keyCode)) return;
  press(keyCode);
  if (debugEnabled()) debugLine("↓ " + label(keyCode));
}

void BypassController::handleKeyUp(KeyCode keyCode) {
  if (keyCode == keyCode::space) {
    spaceHeld_ = false;
    return;
  }
  if (!isRequired(keyCode)) return;
  release(keyCode);
  if (debugEnabled()) debugLine("↑ " + label(keyCode));
}

void BypassController::handleFlagsChanged(KeyCode keyCode, EventFlags flags) {
  if (!isRequired(keyCode)) return;
  const bool down = isModifierPressed(keyCode, flags);
  if (down) {
    press(keyCode);
  } else {
    release(keyCode);
  }
  if (debugEnabled()) debugLine("⇧ " + label(keyCode) + (down ? " down" : " up"));
}

void BypassController::press(KeyCode keyCode) {
  KeyCodeSet pressed = pressedKeys_;
  pressed.insert(keyCode);
  pressedKeys_ = std::move(pressed);
  ensureProgressTimer();
}

void BypassController::release(KeyCode keyCode) {
  if (!pressedKeys_->contains(keyCode)) return;
  KeyCodeSet pressed = pressedKeys_;
  pressed.erase(keyCode);
  pressedKeys_ = std::move(pressed);
}

void BypassController::ensureProgressTimer() {
  if (progressTimer_) return;
  progressTimer_ = Timer::repeating(POLL_INTERVAL, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->updateProgress();
  });
}

void BypassController::updateProgress() {
  // Some key-up events never arrive (a shortcut of the desktop took them); the hardware knows better.
  for (const RequiredKey& key : *requiredKeys_) {
    if (key.isModifier || !pressedKeys_->contains(key.keyCode) || isHardwareDown(key.keyCode)) continue;
    release(key.keyCode);
    if (debugEnabled()) debugLine("⌫ " + label(key.keyCode) + " hardware-up (caught Cmd-suppressed keyUp)");
  }

  if (pressedKeys_->empty()) {
    if (debugWasAllHeld_ && debugEnabled()) debugLine("⏹ all released — cleared");
    allHeldSince_ = std::nullopt;
    progressTimer_.invalidate();
    debugWasAllHeld_ = false;
    return;
  }

  const Seconds now = uptime();
  if (!allKeysHeld()) {
    if (debugEnabled()) {
      if (debugWasAllHeld_) {
        debugWasAllHeld_ = false;
        debugLine("⏸ released — clock reset to zero  [" + heldSnapshot() + "]");
      } else if (now - debugLastHeartbeat_ >= HEARTBEAT) {
        debugLastHeartbeat_ = now;
        debugLine("… waiting  [" + heldSnapshot() + "]");
      }
    }
    allHeldSince_ = std::nullopt;  // no credit for the time already held
    return;
  }

  if (!*allHeldSince_) allHeldSince_ = now;
  const Seconds elapsed = now - **allHeldSince_;
  if (debugEnabled()) {
    if (!debugWasAllHeld_) {
      debugWasAllHeld_ = true;
      debugLastHeartbeat_ = 0;
      debugLine("▶ all keys held — clock start  [" + heldSnapshot() + "]");
    }
    if (now - debugLastHeartbeat_ >= HEARTBEAT) {
      debugLastHeartbeat_ = now;
      debugLine(formatted("  holding %.1f/%.0fs  %.0f%%", elapsed, *holdDuration_,
                          std::min(1.0, elapsed / holdDuration_) * 100));
    }
  }

  if (elapsed < holdDuration_) return;
  progressTimer_.invalidate();
  if (debugEnabled()) debugLine(formatted("✔ HOLD COMPLETE (%.1fs)", elapsed));
  platform().runLoop.async([weak = weak_from_this()] {
    const auto self = weak.lock();
    if (!self || !self->onBypassComplete_) return;
    const std::function<void()> action = self->onBypassComplete_;  // it may replace itself
    action();
  });
}

bool BypassController::isRequired(KeyCode keyCode) const {
  return std::any_of(requiredKeys_->begin(), requiredKeys_->end(),
                     [keyCode](const RequiredKey& key) { return key.keyCode == keyCode; });
}

bool BypassController::allKeysHeld() const {
  return std::all_of(requiredKeys_->begin(), requiredKeys_->end(),
                     [this](const RequiredKey& key) { return pressedKeys_->contains(key.keyCode); });
}

double BypassController::liveProgress() const { return hold().progress(uptime()); }

int BypassController::liveSecondsRemaining() const { return hold().secondsRemaining(uptime()); }

std::string BypassController::label(KeyCode keyCode) {
  for (const RequiredKey& key : requiredKeys()) {
    if (key.keyCode == keyCode) return key.label;
  }
  return "kc" + std::to_string(keyCode);
}

std::string BypassController::legend(KeyCode keyCode) {
  resolveKeyboard();
  for (const KeyLegend& legend : legends_) {
    if (legend.keyCode == keyCode) return legend.text;
  }
  return {};
}

std::string BypassController::heldSnapshot() {
  const auto mark = [](bool down) { return down ? "✓" : "·"; };
  std::string text;
  for (const RequiredKey& key : requiredKeys()) {
    if (!text.empty()) text += "  ";
    text += key.label + ":" + mark(pressedKeys_->contains(key.keyCode));
    if (!key.isModifier) text += std::string("/") + mark(isHardwareDown(key.keyCode));
  }
  return text;
}

}  // namespace dormel
