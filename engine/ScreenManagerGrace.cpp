// The unlock cycle: confirmation, staged fade-out, grace countdown, and the lock's return.
#include <algorithm>
#include <string>
#include <utility>

#include "core/Config.h"
#include "core/DebugLog.h"
#include "engine/ScreenManager.h"
#include "platform/Platform.h"
#include "platform/Process.h"

namespace dormel {
namespace {

constexpr Seconds GRACE_TICK = 1.0;
/// How long keys stay swallowed after the lock lifted: the user is still letting go of five of them.
constexpr Seconds INTERCEPTOR_RETIREMENT = 2.0;
constexpr double PILL_MARGIN = 24;

std::string wholeSeconds(Seconds seconds) { return std::to_string(static_cast<int>(seconds)); }

}  // namespace

void ScreenManager::enterGracePeriod() {
  if (state_ != State::blocked) return;  // a second completion in one turn
  state_ = State::grace;
  graceTotal_ = isTest_ ? TEST_GRACE_DURATION : GRACE_PERIOD_DURATION;
  graceSecondsRemaining_ = static_cast<int>(*graceTotal_);
  graceTimer_ = Timer::repeating(GRACE_TICK, weakly(&ScreenManager::graceTick));
  if (isTest_) {
    DebugLog::shared().append("hold completed — unlock lift, " + wholeSeconds(graceTotal_) + "s grace, then re-block");
  } else {
    ++unlockCount_;
    notifyObservers();
    logUnlock();
    platform().output.print("[grace] unlock #" + std::to_string(unlockCount_) + " logged");
  }
  bypassController_->reset();
  lowerOverlay(true, weakly(&ScreenManager::finishGraceTransition));
}

void ScreenManager::graceTick() {
  graceSecondsRemaining_ = graceSecondsRemaining_ - 1;
  if (graceSecondsRemaining_ >= 1) return;
  graceTimer_.invalidate();
  reBlock();
}

void ScreenManager::lowerOverlay(bool confirmBeat, std::function<void()> completion) {
  const int epoch = ++overlayEpoch_;
  if (!confirmBeat) {
    fadeContent(epoch, std::move(completion));
    return;
  }
  showUnlockConfirm_ = true;
  platform().runLoop.asyncAfter(UNLOCK_CONFIRM_DURATION,
                                [weak = weak_from_this(), epoch, completion = std::move(completion)]() mutable {
                                  if (const auto self = weak.lock()) self->fadeContent(epoch, std::move(completion));
                                });
}

void ScreenManager::fadeContent(int epoch, std::function<void()> completion) {
  if (overlayEpoch_ != epoch) return;
  isFadingOut_ = true;
  platform().runLoop.asyncAfter(OVERLAY_UI_FADE_OUT_DURATION,
                                [weak = weak_from_this(), epoch, completion = std::move(completion)]() mutable {
                                  if (const auto self = weak.lock()) self->fadeWindows(epoch, std::move(completion));
                                });
}

void ScreenManager::fadeWindows(int epoch, std::function<void()> completion) {
  if (overlayEpoch_ != epoch) return;
  std::vector<std::shared_ptr<Window>> lowering;
  for (const auto& blocker : *windows_) lowering.push_back(blocker->sharedWindow());
  auto finish = [weak = weak_from_this(), epoch, completion = std::move(completion)] {
    const auto self = weak.lock();
    if (self && self->overlayEpoch_ == epoch) completion();
  };
  platform().windows.animateAlpha(lowering, 0.0, OVERLAY_FADE_OUT_DURATION, TimingCurve::easeOut,
                                  [finish = std::move(finish)] { platform().runLoop.async(finish); });
}

void ScreenManager::finishGraceTransition() {
  if (state_ != State::grace) return;
  isFadingOut_ = false;
  showUnlockConfirm_ = false;
  if (const std::shared_ptr<KeyInterceptor> retiring = keyInterceptor_) {
    keyInterceptor_ = nullptr;
    retiringInterceptor_ = retiring;
    platform().runLoop.asyncAfter(INTERCEPTOR_RETIREMENT, [weak = weak_from_this(), retiring] {
      retiring->stop();
      const auto self = weak.lock();
      if (!self) return;
      if (*self->retiringInterceptor_ == retiring) self->retiringInterceptor_ = nullptr;
      // Nobody will hear of a modifier that is still down: it would be looked at for the whole grace.
      if (self->state_ == State::grace) self->bypassController_->reset();
    });
  }
  bypassController_->reset();
  platform().application.setPresentationOptions(NO_PRESENTATION);
  const WindowList lowered = windows_;
  windows_ = WindowList{};
  for (const auto& blocker : lowered) {
    blocker->window().orderOut();
    blocker->window().setAlpha(1.0);
  }
  platform().runLoop.async([weak = weak_from_this()] {
    const auto self = weak.lock();
    if (self && self->state_ == State::grace) self->showGraceCountdown();
  });
}

void ScreenManager::showGraceCountdown() {
  const auto screen = platform().screens.main();
  if (!screen) return;
  const std::shared_ptr<BlockerWindow> pill = BlockerWindow::gracePill(shared_from_this());
  const Size fitting = pill->window().contentFittingSize();
  const double width = std::max(fitting.width + 8, 220.0);
  const double height = std::max(fitting.height + 8, 56.0);
  const Rect& area = screen->visibleFrame;
  pill->window().setFrame({area.right() - width - PILL_MARGIN, area.top() - height - PILL_MARGIN, width, height});
  pill->window().orderFrontRegardless();
  WindowList shown = windows_;
  shown.push_back(pill);
  windows_ = std::move(shown);
}

void ScreenManager::reBlock() {
  if (isTest_) {
    reBlockTest();
    return;
  }
  if (!Config::isBlockingNow(platform().clock.now())) {
    platform().output.print("Blocking hours ended during grace period. Exiting cleanly.");
    platform().process.exit(0);
  }
  state_ = State::blocked;
  const std::size_t index = std::min(BYPASS_DURATIONS.size() - 1, static_cast<std::size_t>(unlockCount_));
  bypassController_->setHoldDuration(BYPASS_DURATIONS.at(index));
  platform().output.print("[reblock] next bypass requires " + wholeSeconds(bypassController_->holdDuration()) +
                          "s hold (unlock #" + std::to_string(unlockCount_ + 1) + ")");
  bypassController_->pickRandomKeys(false);
  bypassController_->reset();
  createWindows(true, true);
  startKeyInterceptor();
}

}  // namespace dormel
