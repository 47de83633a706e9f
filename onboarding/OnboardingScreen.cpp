#include "onboarding/OnboardingScreen.h"

#include <algorithm>
#include <utility>

#include "platform/Platform.h"

namespace dormel {

OnbElement& OnboardingScreen::add(Kind kind, Seconds delay, std::string text, OnbElement::Style style,
                                  OnbElement::Action action) {
  return elements_.emplace_back(*this, kind, delay, std::move(text), style, std::move(action));
}

OnbElement& OnboardingScreen::addButton(Seconds delay, std::string title, OnbElement::Style style, OnbAction action) {
  return add(Kind::button, delay, std::move(title), style,
             [action = std::move(action)](std::size_t) { action ? action() : void(); });
}

const OnbElement* OnboardingScreen::find(Kind kind) const {
  const auto found = std::find_if(elements_.begin(), elements_.end(),
                                  [kind](const OnbElement& element) { return element.kind == kind; });
  return found == elements_.end() ? nullptr : &*found;
}

void OnboardingScreen::appear() {
  if (state_ != State::waiting) return;
  state_ = State::shown;
  shownSince_ = platform().clock.uptime();
  for (OnbElement& element : elements_) element.begin();
  onAppear();
}

void OnboardingScreen::disappear() {
  const bool wasShown = state_ == State::shown;
  if (wasShown) shownFor_ = elapsed();
  state_ = State::gone;
  step_.invalidate();
  for (OnbElement& element : elements_) element.end();
  if (wasShown) onDisappear();
}

Seconds OnboardingScreen::elapsed() const {
  return state_ == State::shown ? platform().clock.uptime() - shownSince_ : shownFor_;
}

bool OnboardingScreen::accepts(const OnbElement& element) const { return isShown() && element.on() && element.enabled; }

void OnboardingScreen::press(const OnbElement& element, std::size_t part) {
  if (!accepts(element) || !element.action || part >= std::max<std::size_t>(element.parts->size(), 1)) return;
  const OnbElement::Action action = element.action;  // which may take the element away
  action(part);
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
