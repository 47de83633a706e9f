// What the screens of the first run have in common: they are built, shown once, and go; coming back to one builds it
// afresh. Nothing happens before it is shown, and nothing any more once it has gone: its delayed steps, timed scenes
// and polls end, and presses are ignored. The drawing side may hold on to one that has gone, to draw how it leaves.
//
// A screen tells its observers about every change of what it shows. Main thread only.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "core/Observable.h"
#include "onboarding/OnbElement.h"
#include "onboarding/OnboardingBeat.h"
#include "platform/RunLoop.h"

namespace dormel {

/// What a screen may ask for; it never changes beats by itself.
using OnbAction = std::function<void()>;

class OnboardingScreen : public Observable, public std::enable_shared_from_this<OnboardingScreen> {
 public:
  using Kind = OnbElement::Kind;

  explicit OnboardingScreen(OnboardingBeat beat) : beat_(beat) {}

  [[nodiscard]] OnboardingBeat beat() const { return beat_; }
  /// Top to bottom. There are never more or fewer than when the screen was built.
  [[nodiscard]] const std::deque<OnbElement>& elements() const { return elements_; }
  /// The first of that kind; null where there is none.
  [[nodiscard]] const OnbElement* find(Kind kind) const;

  /// The screen is on screen from now on; delays count from here.
  void appear();
  /// The screen has been left, or its window has gone.
  void disappear();
  [[nodiscard]] bool isShown() const { return state_ == State::shown; }
  /// Seconds since it was shown; 0 before. Stands still once it has gone.
  [[nodiscard]] Seconds elapsed() const;

  /// Whether a press of the element would count now: it has come in, is enabled, and the screen is the current one.
  [[nodiscard]] bool accepts(const OnbElement& element) const;
  /// A part of one of its elements was pressed. The only way in for presses: what does not count ends here. May take
  /// the screen down.
  void press(const OnbElement& element, std::size_t part = 0);

 protected:
  /// Adds an element below the others. Emphasis is read in headlines and lines only.
  OnbElement& add(Kind kind, Seconds delay, std::string text, OnbElement::Style style = {},
                  OnbElement::Action action = {});
  OnbElement& addButton(Seconds delay, std::string title, OnbElement::Style style, OnbAction action);

  virtual void onAppear() {}
  virtual void onDisappear() {}
  /// Does `step` once, `time` seconds after the screen was shown, or at once when that is past; not at all once it has
  /// gone. One step waits at a time: a later call replaces an earlier one.
  void at(Seconds time, OnbAction step);

 private:
  enum class State { waiting, shown, gone };

  OnboardingBeat beat_;
  State state_ = State::waiting;
  std::deque<OnbElement> elements_;
  Seconds shownSince_ = 0;
  Seconds shownFor_ = 0;
  Timer step_;
};

}  // namespace dormel
