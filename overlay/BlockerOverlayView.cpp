#include "overlay/BlockerOverlayView.h"

#include <array>
#include <cstdio>

#include "core/Config.h"
#include "core/Constants.h"
#include "platform/Platform.h"

namespace dormel {
namespace {

constexpr Seconds CLOCK_REFRESH = 1.0;
constexpr Seconds CLOCK_ACCURACY = 0.05;  // the clocks of all screens at once

LocalTime localTime(Date date) { return platform().calendar.localTime(date); }

template <typename... Args>
std::string formatted(const char* pattern, Args... args) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), pattern, args...);
  return text.data();
}

}  // namespace

std::string clockText(Date date, bool use24Hour) {
  const LocalTime time = localTime(date);
  if (use24Hour) return formatted("%02d:%02d", time.hour, time.minute);
  return formatted("%d:%02d", time.hour % 12 == 0 ? 12 : time.hour % 12, time.minute);
}

std::string amPmText(Date date) { return localTime(date).hour < 12 ? "AM" : "PM"; }

std::string graceCountdownText(int seconds) { return formatted("%d:%02d", seconds / 60, seconds % 60); }

std::shared_ptr<BlockerOverlayView> BlockerOverlayView::create(const std::shared_ptr<OverlaySession>& session) {
  std::shared_ptr<BlockerOverlayView> view(new BlockerOverlayView(session));
  view->startObserving();
  return view;
}

BlockerOverlayView::BlockerOverlayView(const std::shared_ptr<OverlaySession>& session)
    : session_(session), bypassController_(session->bypassController()) {}

void BlockerOverlayView::startObserving() {
  const auto redraw = [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->notifyObservers();
  };
  if (const auto session = session_.lock()) sessionObservation_ = session->observe(redraw);
  controllerObservation_ = bypassController_->observe(redraw);
  clockTimer_ = Timer::repeating(CLOCK_REFRESH, redraw, CLOCK_ACCURACY);
}

void BlockerOverlayView::onAppear() {
  if (onAppearCalled_) return;
  onAppearCalled_ = true;
  if (appearDuration() == 0) {
    appeared_ = true;
    return;
  }
  platform().runLoop.asyncAfter(appearDuration() / 2, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->appeared_ = true;
  });
}

Seconds BlockerOverlayView::appearDuration() const {
  const auto session = session_.lock();
  return session && session->overlayFadesIn() ? OVERLAY_FADE_IN_DURATION : 0;
}

bool BlockerOverlayView::isFadingOut() const {
  const auto session = session_.lock();
  return session && session->isFadingOut();
}

std::vector<KeyIndicator> BlockerOverlayView::keys() const {
  std::vector<KeyIndicator> caps;
  for (const RequiredKey& key : bypassController_->requiredKeys()) {
    caps.push_back(
        {key.label,
         key.isModifier ? platform().keyboardLayout.printedLegend(key.keyCode) : bypassController_->legend(key.keyCode),
         key.keyCode, bypassController_->pressedKeys().contains(key.keyCode), key.isModifier});
  }
  return caps;
}

std::string BlockerOverlayView::statusText() const {
  if (bypassController_->justReshuffled()) return "Keys reshuffled";
  if (showUnlockConfirm()) return "";
  if (allKeysHeld()) return "Keep holding...";
  return "Good night. Time to sleep.";
}

Ink BlockerOverlayView::statusColor() const { return ink::white(bypassController_->justReshuffled() ? 0.60 : 0.40); }

bool BlockerOverlayView::allKeysHeld() const { return bypassController_->allKeysHeld(); }

double BlockerOverlayView::progress() const { return bypassController_->liveProgress(); }

Ink BlockerOverlayView::progressColor() const {
  const double done = progress();
  if (done <= 0.4) return ink::white(0.30);
  if (done <= 0.8) return ink::white(0.50);
  return ink::red(0.80);
}

std::string BlockerOverlayView::secondsText() const {
  return std::to_string(bypassController_->liveSecondsRemaining());
}

std::string BlockerOverlayView::clock() const { return clockText(platform().clock.now(), Config::use24HourClock()); }

std::string BlockerOverlayView::amPm() const {
  return Config::use24HourClock() ? std::string() : amPmText(platform().clock.now());
}

bool BlockerOverlayView::showUnlockConfirm() const {
  const auto session = session_.lock();
  return session && session->showUnlockConfirm();
}

std::string BlockerOverlayView::relockText() const {
  const auto session = session_.lock();
  if (!session || session->state() != SessionState::grace) return {};
  return "Relocking in " + graceCountdownText(session->graceSecondsRemaining());
}

}  // namespace dormel
