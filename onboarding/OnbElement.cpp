#include "onboarding/OnbElement.h"

#include <utility>

#include "onboarding/OnboardingScreen.h"

namespace dormel {

OnbElement::OnbElement(OnboardingScreen& screen, Kind kind, Seconds delay, std::string words, Style style, Action press)
    : kind(kind),
      delay(delay),
      style(style),
      action(std::move(press)),
      text(&screen, std::move(words)),
      parts(&screen, {}),
      chosen(&screen, {}),
      enabled(&screen, true),
      released_(style.released),
      on_(&screen, false) {}

void OnbElement::release() {
  if (std::exchange(released_, true)) return;
  if (shown_) comeIn();
}

void OnbElement::begin() {
  shown_ = true;
  if (released_) comeIn();
}

void OnbElement::comeIn() {
  if (delay <= 0) {
    on_ = true;
    return;
  }
  timer_ = Timer::once(delay, [this] { on_ = true; });
}

void OnbElement::end() {
  shown_ = false;
  timer_.invalidate();
}

}  // namespace dormel
