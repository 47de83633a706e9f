// The application object's delegate and the program's top-level controller: chooses the mode of this run, holds the
// session and the main window, keeps the scheduler's job healthy, and refuses to be quit while a scheduled session is
// on. Main thread only.
#pragma once

#include <functional>
#include <memory>

#include "engine/ScreenManager.h"
#include "onboarding/OnboardingView.h"
#include "platform/Alerts.h"
#include "platform/Application.h"
#include "platform/MainWindow.h"
#include "settings/NightsView.h"
#include "settings/SettingsView.h"

namespace dormel {

class AppDelegate : public ApplicationDelegate, public std::enable_shared_from_this<AppDelegate> {
 public:
  enum class Mode {
    scheduled,  ///< started by the scheduler: one session, which ends the process
    window,     ///< opened by the user
  };

  [[nodiscard]] static std::shared_ptr<AppDelegate> create();

  /// Sees to the program's place, then chooses the mode by the command line and starts it. May end the process.
  void didFinishLaunching() override;
  /// Looks whether the user came back from switching the login item on.
  void didBecomeActive() override;
  bool shouldTerminate() override;
  void willTerminate() override;

  /// The program was opened while it runs: its window comes to the front.
  void handleReopen();

  void showSettings();
  /// The page of the last ninety nights, in a window beside the settings; one at a time.
  void showNights();
  /// The first run, from where it was left.
  void showOnboarding();
  /// The first run from its beginning, for a look: it changes nothing, and its end leads to the settings.
  void showOnboardingPreview();
  /// Marks the onboarding as done, arms the scheduler and shows the settings.
  void finishOnboarding();
  /// Asks the user to switch the login item on again; one alert at a time.
  void beginLoginItemsRecovery();
  /// After a confirmation, and never while locked in, removes everything the program put on the machine and ends.
  void confirmUninstall();
  /// A test run of the lock, as the settings offer it.
  void testNow();
  /// The onboarding's demo; false when it cannot start. `onEnd` runs when it is over.
  bool runDemo(std::function<void()> onEnd);
  /// Opens the desktop's page for the permission to take the keyboard.
  static void openAccessibilitySettings();

  [[nodiscard]] Mode mode() const { return mode_; }
  [[nodiscard]] const std::shared_ptr<ScreenManager>& screenManager() const { return screenManager_; }
  [[nodiscard]] bool awaitingLoginItemsFix() const { return awaitingLoginItemsFix_; }
  [[nodiscard]] bool recoveryAlertVisible() const { return recoveryAlert_ != nullptr; }

 private:
  AppDelegate() = default;
  void startScheduledBlock();
  /// Takes the instance lock of scheduled runs, once a holder that is dying has ended, or ends the process.
  void waitForInstance(int triesLeft);
  void beginNight();
  void startWindowMode();
  bool putUpdateInPlace();
  void installMainMenu();
  void selfHeal();
  /// Says so where another copy has the job. Two that both took it would take it from each other without end.
  void sayWhoLocks();
  void recoveryAnswered(bool opens);
  void present(std::unique_ptr<MainWindow> window);
  void presentOnboarding(std::shared_ptr<OnboardingView> view);
  [[nodiscard]] OnboardingView::Hooks onboardingHooks(void (*finish)(AppDelegate&));
  [[nodiscard]] SettingsView::Hooks settingsHooks();
  void ask(const Alert& alert, void (AppDelegate::*onAnswer)(int));
  void uninstallAnswered(int button);
  void uninstallDone(int button);

  Mode mode_ = Mode::window;
  std::shared_ptr<ScreenManager> screenManager_;
  std::unique_ptr<MainWindow> mainWindow_;
  std::unique_ptr<MainWindow> nightsWindow_;
  std::weak_ptr<NightsView> nights_;  // what it shows
  bool hasBeenActive_ = false;
  bool awaitingLoginItemsFix_ = false;
  bool switchSeenOff_ = false;  // when the recovery began: only then can the launch find it on again
  std::unique_ptr<ShownAlert> recoveryAlert_;
  std::unique_ptr<ShownAlert> alert_;  // any other alert that waits for its answer
};

}  // namespace dormel
