// A capsule button that comes in. Main thread only.
#pragma once

#include <functional>
#include <string>

#include "onboarding/OnbReveal.h"

namespace dormel {

class OnbPill {
 public:
  struct Style {
    std::string title;
    bool quiet = false;
    bool enabled = true;
    bool released = true;  ///< of its reveal
  };
  OnbPill(OnboardingScreen& screen, Seconds delay, Style style, std::function<void()> action);

  [[nodiscard]] const std::string& title() const { return title_; }
  [[nodiscard]] bool quiet() const { return quiet_; }
  /// All but gone while not.
  [[nodiscard]] bool enabled() const { return enabled_; }
  void setEnabled(bool enabled) { enabled_ = enabled; }
  [[nodiscard]] OnbReveal& reveal() { return reveal_; }
  [[nodiscard]] const OnbReveal& reveal() const { return reveal_; }

  /// Whether a press would do something now: the button has come in, is enabled, and its screen is the current one.
  [[nodiscard]] bool canPress() const;
  /// May take the screen down, with this button.
  void press() const;

 private:
  const OnboardingScreen& screen_;
  std::string title_;
  bool quiet_;
  Published<bool> enabled_;
  OnbReveal reveal_;
  std::function<void()> action_;
};

}  // namespace dormel
