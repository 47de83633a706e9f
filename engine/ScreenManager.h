// One blocking session: decides whether to lock, covers every screen, takes the keyboard, runs the challenge, grants
// the grace period, locks again, and ends the process with status 0 when the blocking hours are over.
//
// A process has one session object. In a scheduled run it is created and activated at once; in window mode it stays
// idle and only runs rehearsals (the test run and the onboarding demo). It owns its controller, interceptors, windows
// and timers; all of them refer back weakly, so that nothing pending does anything once the session is gone.
//
// Main thread only, but for the watchdog's tick and the log queue's tasks. Overlays and windows observe it.
// The operations stand in one .cpp file per subject: the session itself, Grace, Degraded, Rehearsal, Logs.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "challenge/BypassController.h"
#include "challenge/KeyInterceptor.h"
#include "core/Constants.h"
#include "engine/SpokenLock.h"
#include "overlay/BlockerWindow.h"
#include "overlay/OverlaySession.h"
#include "platform/Application.h"
#include "platform/Queues.h"
#include "platform/Registration.h"
#include "platform/RunLoop.h"

namespace dormel {

/// Takes docks, bars, task switching, force quit and hiding out of the way while locked. Logging out stays possible.
inline constexpr std::uint32_t LOCKDOWN_PRESENTATION =
    hideDock | hideMenuBar | disableAppleMenu | disableProcessSwitching | disableForceQuit | disableHideApplication;
static_assert(LOCKDOWN_PRESENTATION == 378);
inline constexpr std::uint32_t NO_PRESENTATION = 0;

class ScreenManager : public OverlaySession, public std::enable_shared_from_this<ScreenManager> {
 public:
  using State = SessionState;
  using WindowList = std::vector<std::shared_ptr<BlockerWindow>>;

  /// Makes the card that a night without the permission shows. The views it needs live above the engine.
  using PermissionCard = std::function<std::shared_ptr<View>()>;

  /// An idle session. Creates nothing visible. Without `permissionCard` a degraded night shows nothing and only
  /// watches for the permission.
  [[nodiscard]] static std::shared_ptr<ScreenManager> create(PermissionCard permissionCard = {});
  ~ScreenManager() override;

  /// Starts the session of a scheduled run, given whether the process may capture keys. Exits with status 0, one
  /// line printed, when there is nothing to block: onboarding not complete, switched off, outside the hours.
  void activate(bool hasAccessibility);

  /// Takes everything down at once: windows, timers, taps, presentation options. Does not end the process.
  /// Harmless when repeated.
  void deactivate();

  /// Rehearses the whole cycle with short times and without the lockdown options: a 5 s hold, 10 s of grace, a
  /// 12 s hold. Escape, or 90 s without progress, cancels. `onEnd` runs once, in a later turn, after the session
  /// is idle again. Ignored (and `onEnd` not called) unless idle. Switches the debug log on, for good.
  /// Should the main thread hang, the watchdog ends the process 10 s after the rehearsal's own limit.
  void startTest(bool hasAccessibility, std::function<void()> onEnd);

  /// A single 5 s hold with a 30 s backstop. False, and nothing happens, unless idle and permitted to take keys.
  bool startOnboardingDemo(std::function<void()> onEnd);

  [[nodiscard]] State state() const override { return state_; }
  [[nodiscard]] bool showUnlockConfirm() const override { return showUnlockConfirm_; }
  [[nodiscard]] bool isFadingOut() const override { return isFadingOut_; }
  [[nodiscard]] bool overlayFadesIn() const override { return overlayFadesIn_; }
  [[nodiscard]] int graceSecondsRemaining() const override { return graceSecondsRemaining_; }
  [[nodiscard]] double graceTotal() const override { return graceTotal_; }
  [[nodiscard]] const std::shared_ptr<BypassController>& bypassController() const override { return bypassController_; }

  /// One blocker per screen while blocked; the pill during a grace period.
  [[nodiscard]] const WindowList& windows() const { return windows_; }
  [[nodiscard]] const std::shared_ptr<BlockerWindow>& permissionWindow() const { return permissionWindow_; }
  /// The interceptor of the lock that was just lifted: it keeps swallowing keys for 2 s.
  [[nodiscard]] const std::shared_ptr<KeyInterceptor>& retiringInterceptor() const { return retiringInterceptor_; }
  /// The permission as last learned.
  [[nodiscard]] bool hasAccessibility() const { return hasAccessibility_; }
  [[nodiscard]] bool isDegraded() const { return isDegraded_; }
  /// Completed unlocks of this session.
  [[nodiscard]] int unlockCount() const { return unlockCount_; }
  /// Generation of the overlay. A delayed step of a lowering does nothing once it is another.
  [[nodiscard]] int overlayEpoch() const { return overlayEpoch_; }

 private:
  explicit ScreenManager(PermissionCard permissionCard);

  // Session (ScreenManager.cpp)
  void beginBlocking();
  void createWindows(bool lockdown, bool fadeIn);
  void buildWindows(bool lockdown, bool fadeIn);
  void startKeyInterceptor();
  void startTimeCheck();
  void timeCheck();
  void startAccessibilityWatch();
  void pollAccessibility();
  void startWatchdog();
  void startRehearsalWatchdog(Seconds limit);
  void stopWatchdog();
  void registerObservers();
  void willSleep();
  void didWake();
  void screensChanged();
  void orderOutWindows();

  // Unlock, grace, re-block (ScreenManagerGrace.cpp)
  void enterGracePeriod();
  void graceTick();
  void lowerOverlay(bool confirmBeat, std::function<void()> completion);
  void fadeContent(int epoch, std::function<void()> completion);
  void fadeWindows(int epoch, std::function<void()> completion);
  void finishGraceTransition();
  void showGraceCountdown();
  void reBlock();

  // Without the permission (ScreenManagerDegraded.cpp)
  void enterDegradedMode();
  void leaveDegradedMode();
  void showPermissionCard();
  void pollAccessibilityDegraded();

  // Test run and demo (ScreenManagerRehearsal.cpp)
  void completeTestHold();
  void completeDemoHold();
  void reBlockTest();
  void startTestInterceptor();
  void rearmTestTimeout();
  void setTestTimeout(Seconds limit, std::function<void()> action);
  void armDemoBackstop();
  void demoBackstopFired();
  void installTestEscapeMonitor();
  void endTest(bool completed);
  [[nodiscard]] std::function<void()> endTestAction(bool completed);

  // Records (ScreenManagerLogs.cpp)
  void recordNightStats();
  void logUnlock();

  /// An action that runs `operation` on this session if it still exists.
  [[nodiscard]] Task weakly(void (ScreenManager::*operation)());

  const PermissionCard permissionCard_;

  Published<WindowList> windows_{this, {}};
  Published<std::shared_ptr<BlockerWindow>> permissionWindow_{this, nullptr};
  const std::shared_ptr<BypassController> bypassController_;
  Published<std::shared_ptr<KeyInterceptor>> keyInterceptor_{this, nullptr};
  Published<std::shared_ptr<KeyInterceptor>> retiringInterceptor_{this, nullptr};
  Timer timeCheckTimer_;
  Timer accessibilityTimer_;
  std::unique_ptr<BackgroundTimer> watchdogTimer_;
  const std::unique_ptr<SerialQueue> logQueue_;
  Published<State> state_{this, State::idle};
  Published<bool> hasAccessibility_{this, false};
  Published<bool> showUnlockConfirm_{this, false};
  Published<bool> isFadingOut_{this, false};
  Published<bool> isTest_{this, false};
  bool testDidGrace_ = false;
  std::function<void()> testOnEnd_;
  std::unique_ptr<Registration> testEscapeMonitor_;
  Timer testTimeout_;
  Published<int> graceSecondsRemaining_{this, static_cast<int>(GRACE_PERIOD_DURATION)};
  Published<double> graceTotal_{this, GRACE_PERIOD_DURATION};
  Timer graceTimer_;
  int unlockCount_ = 0;
  Published<bool> isDegraded_{this, false};
  int overlayEpoch_ = 0;
  Published<bool> overlayFadesIn_{this, false};
  std::vector<Rect> lastScreenSignature_;
  std::vector<std::unique_ptr<Registration>> observers_;
  std::shared_ptr<SpokenLock> spokenLock_;
};

}  // namespace dormel
