// A vertical wheel of options, one of which is always selected. It is turned by pressing a row, by the scroll wheel or
// a touchpad, and by the arrow keys up and down, which it takes from the whole window while it is there and lets go of
// when its screen goes. Main thread only.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "platform/Keyboard.h"
#include "platform/Registration.h"
#include "platform/Time.h"

namespace dormel {

class OnbElement;
class OnboardingScreen;

class OnbWheel {
 public:
  struct Option {
    std::string label;
    int value = 0;
    friend bool operator==(const Option&, const Option&) = default;
  };

  /// `rows` is the element that shows it, on `screen`. Both outlive it.
  OnbWheel(OnboardingScreen& screen, OnbElement& rows, std::vector<Option> options, int selection);

  [[nodiscard]] const std::vector<Option>& options() const { return options_; }
  [[nodiscard]] int selection() const { return selection_; }
  /// Where the selection stands among the options; 0 when it is not among them.
  [[nodiscard]] std::size_t position() const;

  /// Its screen is shown, and has gone.
  void begin();
  void end();

  /// One row down (1) or up (-1), as far as there is one.
  void step(int by);
  /// A row was pressed.
  void select(std::size_t row);
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
  [[nodiscard]] bool turns() const;

  const OnboardingScreen& screen_;
  OnbElement& rows_;
  std::vector<Option> options_;
  int selection_;
  Seconds lastStep_;
  Seconds lastTurn_;
  double turned_ = 0;  // since the last counted notch, from -60, in the direction of the last turn
  bool turnedAway_ = false;
  std::unique_ptr<Registration> keyMonitor_;
};

}  // namespace dormel
