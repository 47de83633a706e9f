#include "platform/linux/display/KeyTracker.h"

#include <algorithm>

#include "platform/linux/display/KeyCodes.h"

namespace dormel {

void KeyTracker::seed(std::uint32_t keycode, KeyCode keyCode) { held_.emplace(std::pair(SEEDED, keycode), keyCode); }

std::optional<KeyEvent> KeyTracker::press(Source source, std::uint32_t keycode, KeyCode keyCode) {
  held_.erase({SEEDED, keycode});  // pressed again: it must have been up
  const bool wasDown = isDown(keyCode, false);
  held_.emplace(std::pair(source, keycode), keyCode);
  if (wasDown) return std::nullopt;
  return event(keyCode, true);
}

std::optional<KeyEvent> KeyTracker::release(Source source, std::uint32_t keycode) {
  auto held = held_.find({source, keycode});
  if (held == held_.end()) held = held_.find({SEEDED, keycode});
  if (held == held_.end()) return std::nullopt;
  const KeyCode keyCode = held->second;
  held_.erase({source, keycode});
  held_.erase({SEEDED, keycode});
  if (isDown(keyCode, true)) return std::nullopt;
  return event(keyCode, false);
}

std::vector<KeyEvent> KeyTracker::reconcile(Source source, const std::map<std::uint32_t, KeyCode>& down) {
  std::vector<std::uint32_t> gone;
  for (const auto& [key, keyCode] : held_) {
    if ((key.first == source || key.first == SEEDED) && !down.contains(key.second)) gone.push_back(key.second);
  }
  std::vector<KeyEvent> events;
  for (const std::uint32_t keycode : gone) {
    if (const auto released = release(source, keycode)) events.push_back(*released);
  }
  for (const auto& [keycode, keyCode] : down) {
    if (!held_.contains({source, keycode})) seed(keycode, keyCode);
  }
  return events;
}

std::vector<KeyEvent> KeyTracker::releaseAll(Source source) {
  std::vector<std::uint32_t> keycodes;
  for (const auto& [key, keyCode] : held_) {
    if (key.first == source) keycodes.push_back(key.second);
  }
  std::vector<KeyEvent> events;
  for (const std::uint32_t keycode : keycodes) {
    if (const auto released = release(source, keycode)) events.push_back(*released);
  }
  return events;
}

bool KeyTracker::isDown(KeyCode keyCode, bool seededToo) const {
  return std::any_of(held_.begin(), held_.end(), [&](const auto& held) {
    return (seededToo || held.first.first != SEEDED) && held.second == keyCode;
  });
}

KeyEvent KeyTracker::event(KeyCode keyCode, bool down) const {
  if (isModifierKey(keyCode)) return {EventType::flagsChanged, keyCode, flags()};
  return {down ? EventType::keyDown : EventType::keyUp, keyCode, flags()};
}

EventFlags KeyTracker::flags() const {
  EventFlags flags = 0;
  for (const auto& held : held_) flags |= modifierFlags(held.second);
  return flags;
}

}  // namespace dormel
