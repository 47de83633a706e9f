// One element of a screen that comes in by itself: hidden until its moment, then moving into its place.
//
// The clock starts when the screen is shown and the element is released, whichever is later; after `delay` seconds
// `on` turns true, and the drawing side animates it. Main thread only.
#pragma once

#include "core/Observable.h"
#include "platform/RunLoop.h"

namespace dormel {

class OnboardingScreen;

class OnbReveal {
 public:
  /// An element of `screen`, which starts and stops it.
  OnbReveal(OnboardingScreen& screen, Seconds delay, bool released = true);

  [[nodiscard]] Seconds delay() const { return delay_; }
  [[nodiscard]] bool released() const { return released_; }
  /// Lets an element that was held back come in. Once is enough; it cannot be taken back.
  void release();
  /// It is there, or moving in. What is inside can be pressed from now on.
  [[nodiscard]] bool on() const { return on_; }

 private:
  friend class OnboardingScreen;
  void begin();  // the screen is shown
  void end();    // and has gone: what has not come in never will
  void comeIn();

  Seconds delay_;
  bool released_;
  bool shown_ = false;
  Published<bool> on_;
  Timer timer_;
};

}  // namespace dormel
