// The hold-the-keys challenge that lifts the lock: five keys, held together without a break for the hold duration.
//
// The controller draws the keys, learns from key events which of them are down, runs the hold clock while all of
// them are, and calls its owner when the clock is full. Any release puts the clock back to zero. Space draws new
// keys. Main thread only; always owned by a shared_ptr, because its timers refer back to it weakly.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "challenge/Hold.h"
#include "challenge/KeyLegends.h"
#include "challenge/KeyPool.h"
#include "core/Constants.h"
#include "core/Observable.h"
#include "platform/RunLoop.h"
#include "platform/Time.h"

namespace dormel {

/// A small set of key codes, kept sorted.
class KeyCodeSet {
 public:
  [[nodiscard]] bool contains(KeyCode keyCode) const;
  [[nodiscard]] bool empty() const { return codes_.empty(); }
  [[nodiscard]] std::size_t size() const { return codes_.size(); }
  [[nodiscard]] auto begin() const { return codes_.begin(); }
  [[nodiscard]] auto end() const { return codes_.end(); }
  void insert(KeyCode keyCode);
  void erase(KeyCode keyCode);
  friend bool operator==(const KeyCodeSet&, const KeyCodeSet&) = default;

 private:
  std::vector<KeyCode> codes_;
};

class BypassController : public Observable, public std::enable_shared_from_this<BypassController> {
 public:
  /// A controller with a full set of required keys, their labels taken from the keyboard layout of this turn of the
  /// loop. Asking for it takes a millisecond, and labels are for eyes and ears only: the layout is asked when one is
  /// wanted, in the next turn at the latest. By then a lock that begins has covered the screens and taken the keyboard.
  [[nodiscard]] static std::shared_ptr<BypassController> create();

  /// Draws a new challenge (a left modifier, a right modifier of another kind, two left letters, a right letter)
  /// and forgets the hold. `announce` shows the reshuffle notice for 1.5 s.
  void pickRandomKeys(bool announce);
  /// Forgets all held keys and the hold clock; keeps the required keys.
  void reset();

  void handleKeyDown(KeyCode keyCode);
  void handleKeyUp(KeyCode keyCode);
  void handleFlagsChanged(KeyCode keyCode, EventFlags flags);

  /// The keys of the current challenge, in draw order.
  [[nodiscard]] const std::vector<RequiredKey>& requiredKeys() {
    resolveKeyboard();
    return requiredKeys_;
  }
  /// The required keys that count as down.
  [[nodiscard]] const KeyCodeSet& pressedKeys() const { return pressedKeys_; }
  /// True for 1.5 s after a draw that Space asked for.
  [[nodiscard]] bool justReshuffled() const { return justReshuffled_; }
  [[nodiscard]] bool allKeysHeld() const;
  /// The hold that runs, or how long the next one will have to be.
  [[nodiscard]] Hold hold() const { return {*allHeldSince_, *holdDuration_}; }
  /// How much of the hold is done, 0 to 1, by the uptime of this moment.
  [[nodiscard]] double liveProgress() const;
  /// Whole seconds still to hold, rounded up; the whole hold when none runs.
  [[nodiscard]] int liveSecondsRemaining() const;

  [[nodiscard]] Seconds holdDuration() const { return holdDuration_; }
  void setHoldDuration(Seconds duration) { holdDuration_ = duration; }
  /// Called once per completed hold, on the main thread, after the event that completed it.
  void setOnBypassComplete(std::function<void()> action) { onBypassComplete_ = std::move(action); }

  /// The label under which a key appears in the log: a required key's own, else "kc" and the code.
  [[nodiscard]] std::string label(KeyCode keyCode);
  /// What a letter's label leaves open about its key (challenge/KeyLegends.h), by the layout that the labels are from;
  /// empty when it leaves nothing open.
  [[nodiscard]] std::string legend(KeyCode keyCode);
  /// One line that shows each required key, whether it counts as down, and for letters what the hardware says.
  [[nodiscard]] std::string heldSnapshot();

  [[nodiscard]] const std::vector<KeyPool>& leftKeys() {
    resolveKeyboard();
    return leftKeys_;
  }
  [[nodiscard]] const std::vector<KeyPool>& rightKeys() {
    resolveKeyboard();
    return rightKeys_;
  }
  /// Whether the 0.05 s poll runs: only while at least one required key is down.
  [[nodiscard]] bool isPolling() const { return static_cast<bool>(progressTimer_); }

  /// One tick of the poll. Public for the benchmark; the poll's timer is its only other caller.
  void updateProgress();

 private:
  BypassController();
  /// Asks the layout for the labels of all keys; the first time only.
  void resolveKeyboard();
  void ensureProgressTimer();
  [[nodiscard]] bool isRequired(KeyCode keyCode) const;
  void press(KeyCode keyCode);
  void release(KeyCode keyCode);

  Published<std::vector<RequiredKey>> requiredKeys_{this, {}};
  Published<KeyCodeSet> pressedKeys_{this, {}};
  Published<bool> justReshuffled_{this, false};
  Published<Seconds> holdDuration_{this, BYPASS_DURATIONS[0]};
  std::function<void()> onBypassComplete_;
  Published<std::optional<Seconds>> allHeldSince_{this, std::nullopt};

  Timer progressTimer_;
  Timer reshuffleTimer_;
  bool spaceHeld_ = false;          // keeps auto-repeat from drawing again
  bool debugWasAllHeld_ = false;    // a clock-start line is out, its release line is not
  Seconds debugLastHeartbeat_ = 0;  // throttles the periodic lines to one per half second
  bool isResolved_ = false;         // until then labels are the US legends
  std::vector<KeyPool> leftKeys_;
  std::vector<KeyPool> rightKeys_;
  std::vector<KeyLegend> legends_;
};

}  // namespace dormel
