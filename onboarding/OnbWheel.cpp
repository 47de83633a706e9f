#include "onboarding/OnbWheel.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "onboarding/OnboardingScreen.h"
#include "platform/Platform.h"
#include "platform/Windows.h"

namespace dormel {
namespace {

constexpr KeyCode DOWN_ARROW = 125;
constexpr KeyCode UP_ARROW = 126;
constexpr double LEAST_DELTA = 2.0;
constexpr Seconds LEAST_INTERVAL = 0.12;
constexpr double NOTCH = 120;  // eighths of a degree
constexpr double NOTCH_AS_POINTS = 15;
constexpr Seconds PAUSE = 1;

}  // namespace

OnbWheel::OnbWheel(OnboardingScreen& screen, OnbElement& rows, std::vector<Option> options, int selection)
    : screen_(screen),
      rows_(rows),
      options_(std::move(options)),
      selection_(selection),
      lastStep_(-std::numeric_limits<Seconds>::infinity()),
      lastTurn_(lastStep_) {
  rows_.chosen = {position()};
}

void OnbWheel::begin() {
  keyMonitor_ = platform().windows.addLocalKeyDownMonitor([this](const KeyEvent& key) { return keyDown(key.keyCode); });
}

void OnbWheel::end() { keyMonitor_.reset(); }

bool OnbWheel::turns() const { return screen_.accepts(rows_); }

std::size_t OnbWheel::position() const {
  const auto found = std::find_if(options_.begin(), options_.end(),
                                  [this](const Option& option) { return option.value == selection_; });
  return found == options_.end() ? 0 : static_cast<std::size_t>(found - options_.begin());
}

void OnbWheel::step(int by) {
  if (!turns()) return;
  const auto last = static_cast<std::ptrdiff_t>(options_.size()) - 1;
  select(static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(static_cast<std::ptrdiff_t>(position()) + by, 0, last)));
}

void OnbWheel::select(std::size_t row) {
  selection_ = options_.at(row).value;
  rows_.chosen = {row};
}

void OnbWheel::scroll(double delta) {
  if (!turns() || !(std::abs(delta) > LEAST_DELTA)) return;
  const Seconds now = platform().clock.uptime();
  if (!(now - lastStep_ > LEAST_INTERVAL)) return;
  lastStep_ = now;
  step(delta < 0 ? 1 : -1);
}

void OnbWheel::turn(double eighths) {
  if (eighths == 0 || !std::isfinite(eighths)) return;
  const Seconds now = platform().clock.uptime();
  const bool away = eighths > 0;
  if (now - std::exchange(lastTurn_, now) > PAUSE || std::exchange(turnedAway_, away) != away) turned_ = 0;
  turned_ += std::abs(eighths);
  if (turned_ < NOTCH / 2) return;
  turned_ -= NOTCH * std::floor(turned_ / NOTCH + 0.5);
  scroll(away ? NOTCH_AS_POINTS : -NOTCH_AS_POINTS);
}

bool OnbWheel::keyDown(KeyCode keyCode) {
  if (!turns() || (keyCode != DOWN_ARROW && keyCode != UP_ARROW)) return false;
  step(keyCode == DOWN_ARROW ? 1 : -1);
  return true;
}

}  // namespace dormel
