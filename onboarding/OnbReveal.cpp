#include "onboarding/OnbReveal.h"

#include "onboarding/OnboardingScreen.h"

namespace dormel {

OnbReveal::OnbReveal(OnboardingScreen& screen, Seconds delay, bool released)
    : delay_(delay), released_(released), on_(&screen, false) {
  screen.reveals_.push_back(this);
}

void OnbReveal::release() {
  if (released_) return;
  released_ = true;
  if (shown_) comeIn();
}

void OnbReveal::begin() {
  shown_ = true;
  if (released_) comeIn();
}

void OnbReveal::comeIn() {
  if (delay_ <= 0) {
    on_ = true;
    return;
  }
  timer_ = Timer::once(delay_, [this] { on_ = true; });
}

void OnbReveal::end() {
  shown_ = false;
  timer_.invalidate();
}

}  // namespace dormel
