// The keyboard of a simulated machine. A test presses real keys; whether anybody hears of it depends on taps, on the
// focus, and on what goes wrong.
//
// Who receives an event is decided the moment it happens, as a window server does it, even while the main thread is
// stuck; the receivers' code runs in turns of the main thread.
#pragma once

#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "platform/Keyboard.h"
#include "platform/sim/SimJournal.h"
#include "platform/sim/SimTimeline.h"
#include "platform/sim/SimWindows.h"

namespace dormel {

class SimKeyboard : public EventTaps, public HardwareKeys, public InputIdle {
 public:
  SimKeyboard(SimTimeline& timeline, SimJournal& journal, SimWindowServer& windows)
      : timeline_(timeline), journal_(journal), windows_(windows) {}

  [[nodiscard]] std::unique_ptr<EventTap> create(std::function<TapVerdict(const KeyEvent&)> callback) override;
  [[nodiscard]] bool isDown(KeyCode keyCode) const override { return down_.contains(keyCode); }
  [[nodiscard]] Seconds secondsSinceLast(InputKind kind) const override;

  // The user's fingers.
  void press(KeyCode keyCode);
  void release(KeyCode keyCode);
  void releaseAll();
  /// The key goes up and nobody is told: something on the way took the event.
  void releaseUnheard(KeyCode keyCode);
  /// The key is held so long that it repeats. Windows hear it; a tap does not unless `tapToo`.
  void repeat(KeyCode keyCode, bool tapToo = false);
  /// An input of that kind, now.
  void touch(InputKind kind) { lastInput_[kind] = timeline_.uptime(); }
  /// The last input of that kind was `seconds` ago, whatever is touched later; nothing ends that.
  void setIdle(InputKind kind, std::optional<Seconds> seconds);

  // What goes wrong.
  /// Another program has the keyboard: taps stay disabled until it lets go.
  void setGrabDenied(bool denied);
  /// A session lock is up: what no tap has reaches nobody.
  void setKeysReachNobody(bool reachNobody) { reachNobody_ = reachNobody; }
  /// Told whenever a tap is enabled or disabled by its owner: whether any is to have the keyboard.
  void setOnWanted(std::function<void(bool)> onWanted) { onWanted_ = std::move(onWanted); }
  /// The system disables the tap and says so; it stays disabled until somebody enables it again.
  void loseTap(EventType how = EventType::tapDisabledByTimeout);
  /// No tap can be made at all.
  void setTapsImpossible(bool impossible) { tapsImpossible_ = impossible; }
  /// Modifier events carry no side-specific bits.
  void setSidesReported(bool reported) { sidesReported_ = reported; }

  /// Whether some tap has the keyboard.
  [[nodiscard]] bool isTaken() const;
  /// Whether somebody hears a key that goes down or up now: a tap, or a window of ours that has the focus.
  [[nodiscard]] bool isHeard() const;
  /// The keys that other applications got, in order.
  [[nodiscard]] const std::vector<KeyCode>& foreignKeys() const { return foreignKeys_; }
  [[nodiscard]] EventFlags flags() const;

  void processEnded();

 private:
  friend class SimTap;
  struct TapState {
    std::function<TapVerdict(const KeyEvent&)> callback;
    bool wanted = false;
    bool enabled = false;
    bool sourced = false;
  };

  void change(const std::shared_ptr<TapState>& tap, bool enabled);
  void tellWanted();
  void send(KeyCode keyCode, bool isDown);
  void deliver(const KeyEvent& event, bool toTap);
  void passOn(const KeyEvent& event);

  SimTimeline& timeline_;
  SimJournal& journal_;
  SimWindowServer& windows_;
  std::vector<std::weak_ptr<TapState>> taps_;  // the newest stands at the head of the stream
  std::set<KeyCode> down_;
  std::map<InputKind, Seconds> lastInput_;
  std::map<InputKind, Seconds> scriptedIdle_;
  std::vector<KeyCode> foreignKeys_;
  std::function<void(bool)> onWanted_;
  bool grabDenied_ = false;
  bool reachNobody_ = false;
  bool tapsImpossible_ = false;
  bool sidesReported_ = true;
};

/// A keyboard layout: what each key produces. The US one unless told otherwise.
class SimKeyboardLayout : public KeyboardLayout {
 public:
  SimKeyboardLayout();

  [[nodiscard]] std::optional<std::string> translate(KeyCode keyCode) const override;
  [[nodiscard]] std::string printedLegend(KeyCode keyCode) const override;

  void set(KeyCode keyCode, std::string produces) { keys_[keyCode] = std::move(produces); }
  void setLegend(KeyCode keyCode, std::string legend) { legends_[keyCode] = std::move(legend); }
  /// There is no layout at all, or one without any key.
  void clear() { keys_.clear(); }

 private:
  std::map<KeyCode, std::string> keys_;
  std::map<KeyCode, std::string> legends_;
};

}  // namespace dormel
