// What the screens of the first run have in common: they are built, shown once, and go; coming back to one builds it
// afresh. Nothing happens before it is shown, and nothing any more once it has gone: its delayed steps, timed scenes
// and polls end, and presses are ignored. The drawing side may hold on to one that has gone, to draw how it leaves.
//
// A screen tells its observers about every change of what it shows. Main thread only.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "core/Observable.h"
#include "onboarding/OnboardingBeat.h"
#include "platform/RunLoop.h"

namespace dormel {

class OnbReveal;
class OnbWheel;

/// What a screen may ask for; it never changes beats by itself.
using OnbAction = std::function<void()>;

class OnboardingScreen : public Observable, public std::enable_shared_from_this<OnboardingScreen> {
 public:
  explicit OnboardingScreen(OnboardingBeat beat) : beat_(beat) {}

  [[nodiscard]] OnboardingBeat beat() const { return beat_; }
  /// Its elements in the order of their building, top to bottom where they do not say otherwise.
  [[nodiscard]] const std::vector<OnbReveal*>& reveals() const { return reveals_; }

  /// The screen is on screen from now on; delays count from here.
  void appear();
  /// The screen has been left, or its window has gone.
  void disappear();
  [[nodiscard]] bool isShown() const { return state_ == State::shown; }
  /// Seconds since it was shown; 0 before. Stands still once it has gone.
  [[nodiscard]] Seconds elapsed() const;

 protected:
  virtual void onAppear() {}
  virtual void onDisappear() {}
  /// Does `step` once, `time` seconds after the screen was shown, or at once when that is past; not at all once it has
  /// gone. One step waits at a time: a later call replaces an earlier one.
  void at(Seconds time, OnbAction step);

 private:
  friend class OnbReveal;
  friend class OnbWheel;
  enum class State { waiting, shown, gone };

  OnboardingBeat beat_;
  State state_ = State::waiting;
  std::vector<OnbReveal*> reveals_;
  std::vector<OnbWheel*> wheels_;
  Seconds shownSince_ = 0;
  Seconds shownFor_ = 0;
  Timer step_;
};

}  // namespace dormel
