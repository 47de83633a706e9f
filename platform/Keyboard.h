// The keyboard: the system-wide event tap, the state of the hardware, how long the input devices have been idle,
// and what the current layout prints on a key.
//
// Keys are virtual key codes, 16-bit names of physical positions that do not depend on the layout (49 Space,
// 53 Escape, 54 to 62 the modifiers; the letters are in challenge/KeyPool.h). Main thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/Time.h"

namespace dormel {

using KeyCode = std::uint16_t;

/// The modifier state that comes with every key event: generic and side-specific bits, listed in
/// challenge/KeyPool.h.
using EventFlags = std::uint64_t;

enum class EventType : std::uint32_t {
  keyDown = 10,
  keyUp = 11,
  flagsChanged = 12,  ///< a modifier key went down or up; the flags tell which
  tapDisabledByTimeout = 0xFFFFFFFE,
  tapDisabledByUserInput = 0xFFFFFFFF,
};

struct KeyEvent {
  EventType type = EventType::keyDown;
  KeyCode keyCode = 0;
  EventFlags flags = 0;
};

/// Keeps a tap's events coming on the main run loop while it lives.
class RunLoopSource {
 public:
  virtual ~RunLoopSource() = default;
};

/// An installed tap at the head of the login session's event stream. While it is enabled, no other program
/// receives a key. The system may disable it (another program owns the keyboard at this moment); key events
/// are then delivered here as well as to whoever else gets them, and enabling it again may succeed later.
/// Destroying it removes it.
class EventTap {
 public:
  virtual ~EventTap() = default;
  /// True: take the keyboard, now or as soon as it can be had. False: give it back.
  virtual void enable(bool on) = 0;
  /// Whether the keyboard is really taken at this moment.
  [[nodiscard]] virtual bool isEnabled() const = 0;
  /// Connects the tap to the main run loop: its events arrive while the source lives.
  [[nodiscard]] virtual std::unique_ptr<RunLoopSource> makeRunLoopSource() = 0;
};

enum class TapVerdict { swallow, pass };

class EventTaps {
 public:
  virtual ~EventTaps() = default;
  /// A disabled tap that calls `callback` for each key-down (auto-repeat left out), key-up and modifier change,
  /// or null when no tap can be made here.
  [[nodiscard]] virtual std::unique_ptr<EventTap> create(std::function<TapVerdict(const KeyEvent&)> callback) = 0;
};

class HardwareKeys {
 public:
  virtual ~HardwareKeys() = default;
  /// Whether the key is physically down, whatever events were or were not delivered.
  [[nodiscard]] virtual bool isDown(KeyCode keyCode) const = 0;
};

enum class InputKind { keyDown, mouseMoved, leftMouseDown, rightMouseDown, scrollWheel };

class InputIdle {
 public:
  virtual ~InputIdle() = default;
  /// Seconds since the last input of that kind; infinite or negative when it is not known. A platform that
  /// keeps one figure for all input answers it for every kind.
  [[nodiscard]] virtual Seconds secondsSinceLast(InputKind kind) const = 0;
};

class KeyboardLayout {
 public:
  virtual ~KeyboardLayout() = default;
  /// What the current layout produces for the key alone, no modifiers, dead keys not combined, as UTF-8; nothing
  /// when there is no layout or the key produces nothing.
  [[nodiscard]] virtual std::optional<std::string> translate(KeyCode keyCode) const = 0;
  /// What this kind of keyboard prints on a modifier key ("Alt", "Super", "Menu / Ctrl"); empty when a label
  /// like "L.Shift" already says it.
  [[nodiscard]] virtual std::string printedLegend(KeyCode keyCode) const = 0;
};

}  // namespace dormel
