#include "overlay/BlockerOverlayView.h"

#include <array>
#include <cstdio>

#include "core/Config.h"
#include "core/Constants.h"
#include "platform/Platform.h"
#include "platform/Texts.h"

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
  clockTimer_ = Timer::repeating(
      CLOCK_REFRESH,
      [weak = weak_from_this()] {
        if (const auto self = weak.lock()) self->tellOfClock();
      },
      CLOCK_ACCURACY);
}

void BlockerOverlayView::tellOfClock() {
  const Date now = platform().clock.now();
  const bool in24 = Config::use24HourClock();
  toldClock_ = clockText(now, in24) + (in24 ? "" : amPmText(now));
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

std::vector<KeyIndicator> BlockerOverlayView::keys() const {
  std::vector<KeyIndicator> caps;
  for (const RequiredKey& key : bypassController_->requiredKeys()) {
    caps.push_back(
        {key.label,
         key.isModifier ? platform().keyboardLayout.printedLegend(key.keyCode) : bypassController_->legend(key.keyCode),
         usLabel(key.keyCode), key.keyCode, bypassController_->pressedKeys().contains(key.keyCode), key.isModifier});
  }
  return caps;
}

std::string BlockerOverlayView::statusText(bool showUnlockConfirm) const {
  if (bypassController_->justReshuffled()) return translate("Keys reshuffled");
  if (showUnlockConfirm) return "";
  if (bypassController_->allKeysHeld()) return translate("Keep holding...");
  return translate("Good night. Time to sleep.");
}

BlockerOverlayState BlockerOverlayView::state() const {
  const auto session = session_.lock();
  BlockerOverlayState state;
  state.appeared = appeared_;
  state.appearDuration = appearDuration();
  state.isFadingOut = session && session->isFadingOut();
  state.keys = keys();
  state.showUnlockConfirm = session && session->showUnlockConfirm();
  state.statusText = statusText(state.showUnlockConfirm);
  state.statusColor = color::white(bypassController_->justReshuffled() ? 0.60 : 0.40);
  state.allKeysHeld = bypassController_->allKeysHeld();
  state.hold = bypassController_->hold();
  state.words = {translate("Space to reshuffle keys"), translate("Unlocked. Let go."),
                 translate("Hold all of them down for %1 seconds."), translate("Keep holding... %1 s left")};
  const Date now = platform().clock.now();
  const bool in24 = Config::use24HourClock();
  state.clock = clockText(now, in24);
  if (!in24) state.amPm = amPmText(now);
  if (session && session->state() == SessionState::grace) {
    state.relockText = translate("Relocking in %1", {graceCountdownText(session->graceSecondsRemaining())});
  }
  return state;
}

std::vector<std::string> BlockerOverlayView::plainLines(const CanWrite& canWrite) const {
  return state().plainLines(platform().clock.uptime(), canWrite);
}

}  // namespace dormel
