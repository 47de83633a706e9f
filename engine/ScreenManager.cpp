#include "engine/ScreenManager.h"

#include <chrono>
#include <string>
#include <utility>

#include "core/Config.h"
#include "platform/Accessibility.h"
#include "platform/Notices.h"
#include "platform/Platform.h"
#include "platform/Process.h"

namespace dormel {
namespace {

constexpr Seconds TIME_CHECK_INTERVAL = 30.0;
constexpr Seconds ACCESSIBILITY_INTERVAL = 3.0;
constexpr Seconds WATCHDOG_INTERVAL = 10.0;
/// After the end of the hours or of a rehearsal's time, should the watchdog itself be stuck: a home folder on a server
/// that is gone, a stopped process.
constexpr Seconds LAST_RESORT = 20.0;

/// A rehearsal that the main thread did not end by now never will: it is stuck.
constexpr Seconds REHEARSAL_SLACK = 10.0;

void print(const std::string& line) { platform().output.print(line); }

void exitCleanly() { platform().process.exit(0); }

bool isBlockingNow() { return Config::isBlockingNow(platform().clock.now()); }

/// There is nothing to block. But an end takes its time, seconds on a disk that hangs, and should the start hour strike
/// meanwhile, the scheduler sees this run alive and starts no other: the night would go by unlocked. So the last thing
/// it does is to look again, a moment ahead, and to have itself started again.
void exitUnlessItBegins() {
  platform().process.exit([] {
    const Date soon = platform().clock.now() + std::chrono::milliseconds(250);
    return Config::onboardingComplete() && Config::blockingEnabled() && Config::isBlockingNow(soon) ? 1 : 0;
  });
}

std::vector<Rect> frames(const std::vector<Screen>& screens) {
  std::vector<Rect> signature;
  signature.reserve(screens.size());
  for (const Screen& screen : screens) signature.push_back(screen.frame);
  return signature;
}

}  // namespace

std::shared_ptr<ScreenManager> ScreenManager::create(PermissionCard permissionCard) {
  return std::shared_ptr<ScreenManager>(new ScreenManager(std::move(permissionCard)));
}

ScreenManager::ScreenManager(PermissionCard permissionCard)
    : permissionCard_(std::move(permissionCard)),
      bypassController_(BypassController::create()),
      logQueue_(platform().queues.makeSerial(std::string(APP_ID_BASE) + ".unlocklog")) {}

ScreenManager::~ScreenManager() {
  if (watchdogTimer_) stopWatchdog();
}

Task ScreenManager::weakly(void (ScreenManager::*operation)()) {
  return [weak = weak_from_this(), operation] {
    if (const auto self = weak.lock()) (self.get()->*operation)();
  };
}

void ScreenManager::activate(bool hasAccessibility) {
  hasAccessibility_ = hasAccessibility;
  if (!Config::onboardingComplete()) {
    print("Onboarding not complete — not blocking. Exiting.");
    return exitUnlessItBegins();
  }
  if (!Config::blockingEnabled()) {
    print("Dormel is disabled by the user — not blocking. Exiting.");
    return exitUnlessItBegins();
  }
  if (!isBlockingNow()) {
    print("Outside blocking hours (" + std::to_string(Config::startHour()) + ":00–" +
          std::to_string(Config::endHour()) + ":00). Exiting.");
    return exitUnlessItBegins();
  }
  if (hasAccessibility) {
    beginBlocking();
  } else {
    enterDegradedMode();
  }
}

void ScreenManager::beginBlocking() {
  state_ = State::blocked;
  recordNightStats();
  bypassController_->pickRandomKeys(false);
  bypassController_->setOnBypassComplete(weakly(&ScreenManager::enterGracePeriod));
  createWindows(true, true);
  startKeyInterceptor();
  startTimeCheck();
  startAccessibilityWatch();
  registerObservers();
  startWatchdog();
  spokenLock_ = SpokenLock::create(shared_from_this(), false);
}

void ScreenManager::createWindows(bool lockdown, bool fadeIn) {
  ++overlayEpoch_;
  isFadingOut_ = false;
  showUnlockConfirm_ = false;
  overlayFadesIn_ = fadeIn;
  buildWindows(lockdown, fadeIn);
}

void ScreenManager::buildWindows(bool lockdown, bool fadeIn) {
  const WindowList old = windows_;
  platform().application.activateIgnoringOthers();

  const std::vector<Screen> screens = platform().screens.all();
  WindowList built;
  for (const Screen& screen : screens) built.push_back(BlockerWindow::blocker(screen, shared_from_this()));
  windows_ = built;
  lastScreenSignature_ = frames(screens);

  for (const auto& blocker : built) {
    if (fadeIn) blocker->window().setAlpha(0);
    blocker->window().makeKeyAndOrderFront();
    blocker->window().orderFrontRegardless();
  }
  if (lockdown) platform().application.setPresentationOptions(LOCKDOWN_PRESENTATION);
  if (fadeIn) {
    std::vector<std::shared_ptr<Window>> rising;
    for (const auto& blocker : built) rising.push_back(blocker->sharedWindow());
    platform().runLoop.async([rising = std::move(rising)] {
      platform().windows.animateAlpha(rising, 1.0, OVERLAY_FADE_IN_DURATION, TimingCurve::easeOut, {});
    });
  }
  // Only now, so that a rebuild never uncovers a screen.
  for (const auto& blocker : old) blocker->window().orderOut();
}

void ScreenManager::startKeyInterceptor() {
  if (*keyInterceptor_) keyInterceptor_->get()->stop();
  keyInterceptor_ = KeyInterceptor::create(bypassController_);
  if (!keyInterceptor_->get()->start()) {
    print("Warning: KeyInterceptor failed to start. Keyboard events will only be captured via window.");
  }
}

void ScreenManager::startTimeCheck() {
  timeCheckTimer_ = Timer::repeating(TIME_CHECK_INTERVAL, weakly(&ScreenManager::timeCheck), POLL_ACCURACY);
}

void ScreenManager::timeCheck() {
  if (isBlockingNow()) return;
  deactivate();
  print("Blocking hours ended. Exiting cleanly.");
  exitCleanly();
}

void ScreenManager::startAccessibilityWatch() {
  accessibilityTimer_ =
      Timer::repeating(ACCESSIBILITY_INTERVAL, weakly(&ScreenManager::pollAccessibility), POLL_ACCURACY);
}

void ScreenManager::pollAccessibility() {
  const bool trusted = platform().accessibility.isProcessTrusted();
  if (trusted == hasAccessibility_) return;
  hasAccessibility_ = trusted;
  if (isDegraded_) {
    pollAccessibilityDegraded();
    return;
  }
  if (state_ != State::blocked) return;
  print(std::string("[a11y] Accessibility changed → ") + (trusted ? "true" : "false") + "; rebuilding lockdown.");
  platform().application.setPresentationOptions(LOCKDOWN_PRESENTATION);
  if (trusted) startKeyInterceptor();
}

void ScreenManager::startWatchdog() {
  // Touches nothing of the session: it must end the process even while the main thread is stuck in it.
  const auto limitTheNight = [] {
    platform().process.endWithin(Config::blockingTimeLeft(platform().clock.now()) + LAST_RESORT);
  };
  limitTheNight();
  watchdogTimer_ = platform().queues.makeBackgroundTimer(WATCHDOG_INTERVAL, WATCHDOG_INTERVAL, [limitTheNight] {
    if (isBlockingNow()) return limitTheNight();
    print("[watchdog] Outside blocking hours. Force exiting.");
    exitCleanly();
  });
}

void ScreenManager::startRehearsalWatchdog(Seconds limit) {
  const Seconds late = limit + REHEARSAL_SLACK;
  platform().process.endWithin(late + LAST_RESORT);
  watchdogTimer_ = platform().queues.makeBackgroundTimer(late, late, [] {
    print("[watchdog] The rehearsal does not end. Force exiting.");
    platform().process.exit(1);
  });
}

void ScreenManager::stopWatchdog() {
  watchdogTimer_.reset();
  platform().process.endWithin({});
}

void ScreenManager::registerObservers() {
  Notices& notices = platform().notices;
  observers_.clear();
  observers_.push_back(notices.observe(Notice::screenParametersChanged, weakly(&ScreenManager::screensChanged)));
  observers_.push_back(notices.observe(Notice::willSleep, weakly(&ScreenManager::willSleep)));
  observers_.push_back(notices.observe(Notice::didWake, weakly(&ScreenManager::didWake)));
}

void ScreenManager::willSleep() { bypassController_->reset(); }

void ScreenManager::didWake() {
  bypassController_->reset();
  if (isBlockingNow()) return;
  deactivate();
  print("Woke outside blocking hours. Exiting.");
  exitCleanly();
}

void ScreenManager::screensChanged() {
  if (frames(platform().screens.all()) == lastScreenSignature_) return;
  if (state_ != State::blocked) return;
  overlayFadesIn_ = false;
  buildWindows(!isTest_, false);
}

void ScreenManager::orderOutWindows() {
  const WindowList taken = windows_;
  windows_ = WindowList{};
  for (const auto& blocker : taken) blocker->window().orderOut();
}

void ScreenManager::deactivate() {
  ++overlayEpoch_;
  spokenLock_.reset();
  state_ = State::idle;
  isDegraded_ = false;
  isFadingOut_ = false;
  showUnlockConfirm_ = false;
  if (*permissionWindow_) permissionWindow_->get()->window().orderOut();
  permissionWindow_ = nullptr;
  graceTimer_.invalidate();
  timeCheckTimer_.invalidate();
  accessibilityTimer_.invalidate();
  stopWatchdog();
  if (*keyInterceptor_) keyInterceptor_->get()->stop();
  keyInterceptor_ = nullptr;
  if (*retiringInterceptor_) retiringInterceptor_->get()->stop();
  retiringInterceptor_ = nullptr;
  bypassController_->reset();
  observers_.clear();
  orderOutWindows();
  platform().application.setPresentationOptions(NO_PRESENTATION);
}

}  // namespace dormel
