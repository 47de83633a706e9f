// The two rehearsals, run outside the hours and always leavable: the test run (the whole cycle in miniature) and the
// onboarding demo (one hold). Neither counts unlocks, writes a record or looks at the blocking hours.
#include <string>
#include <utility>

#include "core/DebugLog.h"
#include "engine/ScreenManager.h"
#include "platform/Accessibility.h"
#include "platform/Platform.h"

namespace dormel {
namespace {

constexpr Seconds TEST_TIMEOUT = 90.0;

void trace(const std::string& line) { DebugLog::shared().append(line); }

std::string wholeSeconds(Seconds seconds) { return std::to_string(static_cast<int>(seconds)); }

}  // namespace

std::function<void()> ScreenManager::endTestAction(bool completed) {
  return [weak = weak_from_this(), completed] {
    if (const auto self = weak.lock()) self->endTest(completed);
  };
}

void ScreenManager::startTest(bool hasAccessibility, std::function<void()> onEnd) {
  if (state_ != State::idle || isTest_) return;
  isTest_ = true;
  testOnEnd_ = std::move(onEnd);
  hasAccessibility_ = hasAccessibility;
  DebugLog::shared().setEnabled(true);
  trace("═══ TEST START · hold " + wholeSeconds(TEST_HOLD_DURATION) + "s → grace " + wholeSeconds(TEST_GRACE_DURATION) +
        "s → re-block → hold " + wholeSeconds(TEST_REBLOCK_HOLD_DURATION) +
        "s · Esc cancels · AX=" + (hasAccessibility ? "on" : "off") + " ═══");
  trace("legend: letters show events/hardware (·=up ✓=down); the poll prunes stale letter keyUps via hardware");
  state_ = State::blocked;
  bypassController_->setHoldDuration(TEST_HOLD_DURATION);
  bypassController_->pickRandomKeys(false);
  bypassController_->setOnBypassComplete(weakly(&ScreenManager::completeTestHold));
  createWindows(false, true);
  installTestEscapeMonitor();
  if (hasAccessibility) {
    startTestInterceptor();
    trace("input: global event tap (keys consumed system-wide) · Esc cancels");
  } else {
    trace(
        "⚠ no Accessibility — keys are NOT captured system-wide; other apps may grab your shortcuts. Grant AX for a "
        "real test.");
  }
  rearmTestTimeout();
  spokenLock_ = SpokenLock::create(shared_from_this(), true);
}

void ScreenManager::startTestInterceptor() {
  startKeyInterceptor();
  keyInterceptor_->get()->setOnEscape(endTestAction(false));
}

void ScreenManager::completeTestHold() {
  if (!isTest_ || state_ != State::blocked) return;
  if (!testDidGrace_) {
    testDidGrace_ = true;
    rearmTestTimeout();
    enterGracePeriod();
    return;
  }
  trace("second hold completed — full loop proven, ending test");
  bypassController_->setOnBypassComplete({});
  bypassController_->reset();
  rearmTestTimeout();
  lowerOverlay(true, endTestAction(true));
}

void ScreenManager::reBlockTest() {
  if (state_ != State::grace) return;
  trace("grace over — re-blocking; hold again to finish the test");
  state_ = State::blocked;
  bypassController_->setHoldDuration(TEST_REBLOCK_HOLD_DURATION);
  bypassController_->pickRandomKeys(false);
  bypassController_->reset();
  createWindows(false, true);
  if (hasAccessibility_) startTestInterceptor();
  rearmTestTimeout();
}

void ScreenManager::setTestTimeout(Seconds limit, std::function<void()> action) {
  testTimeout_ = Timer::once(limit, std::move(action));
  startRehearsalWatchdog(limit);
}

void ScreenManager::rearmTestTimeout() { setTestTimeout(TEST_TIMEOUT, endTestAction(false)); }

void ScreenManager::installTestEscapeMonitor() {
  testEscapeMonitor_ = platform().windows.addLocalKeyDownMonitor([end = endTestAction(false)](const KeyEvent& event) {
    if (event.keyCode != keyCode::escape) return false;
    end();
    return true;
  });
}

void ScreenManager::endTest(bool completed) {
  if (!isTest_) return;
  isTest_ = false;
  spokenLock_.reset();
  ++overlayEpoch_;
  graceTimer_.invalidate();
  testDidGrace_ = false;
  isFadingOut_ = false;
  showUnlockConfirm_ = false;
  testTimeout_.invalidate();
  stopWatchdog();
  // The monitor may be the caller; it is let go of once this turn is over.
  if (testEscapeMonitor_) {
    platform().runLoop.async([monitor = std::shared_ptr<Registration>(std::move(testEscapeMonitor_))] {});
  }
  if (*keyInterceptor_) keyInterceptor_->get()->stop();
  keyInterceptor_ = nullptr;
  if (*retiringInterceptor_) retiringInterceptor_->get()->stop();
  retiringInterceptor_ = nullptr;
  bypassController_->setOnBypassComplete({});
  bypassController_->reset();
  platform().application.setPresentationOptions(NO_PRESENTATION);
  orderOutWindows();
  state_ = State::idle;
  trace(completed ? "═══ TEST PASSED · hold completed ═══" : "═══ TEST CANCELLED ═══");
  if (auto onEnd = std::exchange(testOnEnd_, {})) platform().runLoop.async(std::move(onEnd));
}

bool ScreenManager::startOnboardingDemo(std::function<void()> onEnd) {
  if (state_ != State::idle || isTest_ || !platform().accessibility.isProcessTrusted()) return false;
  isTest_ = true;
  testOnEnd_ = std::move(onEnd);
  hasAccessibility_ = true;
  state_ = State::blocked;
  bypassController_->setHoldDuration(TEST_HOLD_DURATION);
  bypassController_->pickRandomKeys(false);
  bypassController_->setOnBypassComplete(weakly(&ScreenManager::completeDemoHold));
  createWindows(false, true);
  installTestEscapeMonitor();
  startTestInterceptor();
  armDemoBackstop();
  spokenLock_ = SpokenLock::create(shared_from_this(), true);
  return true;
}

void ScreenManager::armDemoBackstop() {
  setTestTimeout(DEMO_BACKSTOP_DURATION, weakly(&ScreenManager::demoBackstopFired));
}

void ScreenManager::demoBackstopFired() {
  if (!isTest_ || state_ != State::blocked) return;
  bypassController_->setOnBypassComplete({});
  bypassController_->reset();
  rearmTestTimeout();
  lowerOverlay(false, endTestAction(false));
}

void ScreenManager::completeDemoHold() {
  if (!isTest_ || state_ != State::blocked) return;
  bypassController_->setOnBypassComplete({});
  bypassController_->reset();
  rearmTestTimeout();
  lowerOverlay(true, endTestAction(true));
}

}  // namespace dormel
