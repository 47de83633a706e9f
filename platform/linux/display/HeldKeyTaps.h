// Event taps of a family of displays that hands every key over to us while we hold the keyboard, and to nobody else.
// To hold it is what "enabled" means: the verdict of a callback has no effect here. Main thread only.
#pragma once

#include <functional>
#include <memory>

#include "platform/Keyboard.h"

namespace dormel {

class HeldKeyTaps final : public EventTaps {
 public:
  struct Keys {
    std::function<bool()> areHeld;
    /// Whether some tap wants them from now on.
    std::function<void(bool)> want;
  };

  /// `keys` is asked and told until this goes; taps that outlive it are disabled.
  explicit HeldKeyTaps(Keys keys);
  HeldKeyTaps(const HeldKeyTaps&) = delete;
  HeldKeyTaps& operator=(const HeldKeyTaps&) = delete;
  ~HeldKeyTaps() override;

  [[nodiscard]] std::unique_ptr<EventTap> create(std::function<TapVerdict(const KeyEvent&)> callback) override;

  /// Shows the taps a key that came to us; false when there is none, and it is its window's.
  bool deliver(const KeyEvent& event);
  /// The answer of `areHeld` may be another now.
  void heldChanged();

 private:
  struct State;
  struct Shared;
  class Source;
  class Tap;

  std::shared_ptr<Shared> shared_;
};

}  // namespace dormel
