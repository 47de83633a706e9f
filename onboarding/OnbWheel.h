// A vertical wheel of options, one of which is always selected. It is turned by pressing a row, by the scroll wheel or
// a touchpad, and by the arrow keys up and down, which it takes from the whole window while it is there and lets go of
// when its screen goes. Main thread only.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "onboarding/OnbReveal.h"
#include "platform/Keyboard.h"
#include "platform/Registration.h"

namespace dormel {

class OnbWheel {
 public:
  struct Option {
    std::string label;
    int value = 0;
    friend bool operator==(const Option&, const Option&) = default;
  };

  OnbWheel(OnboardingScreen& screen, Seconds delay, std::vector<Option> options, int selection);

  [[nodiscard]] const std::vector<Option>& options() const { return options_; }
  [[nodiscard]] std::vector<int> values() const;
  [[nodiscard]] int selection() const { return selection_; }
  /// Where the selection stands among the options; 0 when it is not among them.
  [[nodiscard]] int position() const;
  [[nodiscard]] OnbReveal& reveal() { return reveal_; }
  [[nodiscard]] const OnbReveal& reveal() const { return reveal_; }

  /// One row down (1) or up (-1), as far as there is one.
  void step(int by);
  /// A row was pressed. Nothing happens for a value that no row has, or before the wheel has come in.
  void select(int value);
  /// A scroll event anywhere on the wheel's screen; it is consumed in any case. `delta` is vertical, in points: what a
  /// touchpad reports, or 15 for one notch of a scroll wheel; positive when the content moves down (the wheel is turned
  /// away from the user). Small ones and quick successions have no effect.
  void scroll(double delta);
  /// A scroll wheel of any fineness was turned, in eighths of a degree; positive away from the user. One row for each
  /// notch of 120, counted as soon as half of it is done. What is left of a notch is forgotten when the direction
  /// changes and after a pause.
  void turn(double eighths);
  /// A key-down of this application; true when the wheel took it. It sees the keys by itself (addLocalKeyDownMonitor);
  /// nobody needs to hand them in where the platform has such a monitor.
  bool keyDown(KeyCode keyCode);

 private:
  friend class OnboardingScreen;
  void begin();
  void end();
  [[nodiscard]] bool turns() const { return reveal_.on() && isShown_; }

  std::vector<Option> options_;
  Published<int> selection_;
  OnbReveal reveal_;
  bool isShown_ = false;
  Seconds lastStep_;
  Seconds lastTurn_;
  double turned_ = 0;  // since the last counted notch, from -60, in the direction of the last turn
  bool turnedAway_ = false;
  std::unique_ptr<Registration> keyMonitor_;
};

}  // namespace dormel
