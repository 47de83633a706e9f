#include "onboarding/OnboardingScreen.h"

#include <utility>

#include "onboarding/OnbReveal.h"
#include "onboarding/OnbWheel.h"
#include "platform/Platform.h"

namespace dormel {

void OnboardingScreen::appear() {
  if (state_ != State::waiting) return;
  state_ = State::shown;
  shownSince_ = platform().clock.uptime();
  for (OnbReveal* reveal : reveals_) reveal->begin();
  for (OnbWheel* wheel : wheels_) wheel->begin();
  onAppear();
}

void OnboardingScreen::disappear() {
  const bool wasShown = state_ == State::shown;
  if (wasShown) shownFor_ = elapsed();
  state_ = State::gone;
  step_.invalidate();
  for (OnbReveal* reveal : reveals_) reveal->end();
  for (OnbWheel* wheel : wheels_) wheel->end();
  if (wasShown) onDisappear();
}

Seconds OnboardingScreen::elapsed() const {
  return state_ == State::shown ? platform().clock.uptime() - shownSince_ : shownFor_;
}

void OnboardingScreen::at(Seconds time, OnbAction step) {
  if (state_ != State::shown) return;
  const Seconds left = time - elapsed();
  if (left <= 0) {
    step();
    return;
  }
  step_ = Timer::once(left, std::move(step));
}

}  // namespace dormel
