#include "app/AppDelegate.h"

#include <algorithm>
#include <string>
#include <utility>

#include "app/AgentManager.h"
#include "app/AppInstaller.h"
#include "app/CommandLine.h"
#include "app/MainMenuItems.h"
#include "core/Config.h"
#include "core/DebugLog.h"
#include "platform/Accessibility.h"
#include "platform/Bundle.h"
#include "platform/Defaults.h"
#include "platform/Files.h"
#include "platform/Platform.h"
#include "platform/Process.h"
#include "platform/RunLoop.h"
#include "platform/Texts.h"
#include "platform/Updater.h"
#include "platform/Wording.h"
#include "platform/Workspace.h"
#include "settings/AccessibilityCardView.h"

namespace dormel {
namespace {

constexpr const char* ACCESSIBILITY_PAGE =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";
constexpr Size SETTINGS_SIZE{460, 660};

// An end may take its time, on a hung disk or until the scheduler's kill, and nobody starts a run that ended with 0
// again. Who holds the instance lock ten seconds later is not about to end.
constexpr Seconds INSTANCE_LOCK_PAUSE = 0.25;
constexpr int INSTANCE_LOCK_TRIES = 40;

void print(const std::string& line) { platform().output.print(line); }

void trace(const std::string& line) { DebugLog::shared().append(line); }

bool needsApproval() {
  return platform().loginItems.status(AgentManager::plistPath()) == LoginItemStatus::requiresApproval;
}

bool isTrusted() { return platform().accessibility.isProcessTrusted(); }

std::shared_ptr<View> permissionCard() { return AccessibilityCardView::create(AppDelegate::openAccessibilitySettings); }

}  // namespace

std::shared_ptr<AppDelegate> AppDelegate::create() { return std::shared_ptr<AppDelegate>(new AppDelegate); }

void AppDelegate::didFinishLaunching() {
  const bool scheduled = std::find(cliArgs.begin(), cliArgs.end(), "--scheduled") != cliArgs.end();
  if (!AppInstaller::moveToApplicationsFolderIfNeeded(scheduled)) return;
  if (scheduled) {
    startScheduledBlock();
  } else {
    startWindowMode();
  }
}

void AppDelegate::startScheduledBlock() {
  mode_ = Mode::scheduled;
  waitForInstance(INSTANCE_LOCK_TRIES);
}

void AppDelegate::waitForInstance(int triesLeft) {
  if (platform().process.acquireScheduledInstance()) return beginNight();
  if (triesLeft == 0) {
    print("Dormel is already watching this night in another process. Exiting.");
    platform().process.exit(0);
  }
  platform().runLoop.asyncAfter(INSTANCE_LOCK_PAUSE, [weak = weak_from_this(), triesLeft] {
    if (const auto self = weak.lock()) self->waitForInstance(triesLeft - 1);
  });
}

void AppDelegate::beginNight() {
  platform().application.setActivationPolicy(ActivationPolicy::accessory);
  platform().application.activateIgnoringOthers();
  const bool trusted = isTrusted();
  if (trusted) {
    print("Accessibility permission OK.");
  } else {
    print("WARNING: Accessibility not granted — Dormel will NOT lock the screen tonight (P2.2r).");
    print(platform().wording.permission().remedy);
  }
  screenManager_ = ScreenManager::create(permissionCard);
  screenManager_->activate(trusted);
}

void AppDelegate::startWindowMode() {
  mode_ = Mode::window;
  for (std::size_t i = 1; i < cliArgs.size(); ++i) {
    platform().output.printError("Dormel: unknown argument " + cliArgs[i] + "; see --help");
  }
  if (!platform().process.acquireWindowInstance([weak = weak_from_this()] {
        if (const auto self = weak.lock()) self->handleReopen();
      })) {
    platform().process.exit(0);  // the running one comes to the front instead
  }
  if (putUpdateInPlace()) return;
  AppInstaller::listInMenus();
  platform().application.setActivationPolicy(ActivationPolicy::regular);
  installMainMenu();
  platform().application.activateIgnoringOthers();
  screenManager_ = ScreenManager::create(permissionCard);
  if (!Config::onboardingComplete()) {
    showOnboarding();
    return;
  }
  showSettings();
  selfHeal();
}

bool AppDelegate::putUpdateInPlace() {
  // Never while the lock may be on: whoever opens the window then is not to be given another program to wait for.
  if (Config::blockingEnabled() && Config::isBlockingNow(platform().clock.now())) return false;
  if (!platform().updater.installStagedUpdate()) return false;
  trace("update put in place — opening it");
  AppInstaller::relaunch(platform().bundle.path());
  return true;
}

void AppDelegate::installMainMenu() {
  platform().mainMenu.install(mainMenu(), WINDOWS_MENU, [](MenuCommand command) {
    if (command == MenuCommand::quit) platform().application.terminate();
  });
}

void AppDelegate::selfHeal() {
  if (!AppInstaller::isInItsPlace()) return;
  if (AgentManager::isLoaded()) return sayWhoLocks();
  if (needsApproval()) {
    trace("self-heal: Dormel is switched off in Login Items — asking the user");
    if (Config::blockingEnabled()) beginLoginItemsRecovery();
    return;
  }
  if (AgentManager::rearm()) {
    print("Self-heal: LaunchAgent not loaded — re-armed.");
    trace("self-heal: agent not loaded at Settings launch — re-armed");
    return sayWhoLocks();
  }
  if (!Config::blockingEnabled()) return;
  trace("self-heal: re-arm bootstrap FAILED — asking the user");
  beginLoginItemsRecovery();
}

void AppDelegate::sayWhoLocks() {
  const auto program = AgentManager::otherCopy();
  if (!program) return;
  alert_ = platform().alerts.show(
      {AlertStyle::informational,
       translate("Another copy of Dormel does the locking"),
       translate("It is %1. What you set here holds for it, too.\n\nTo have this copy lock instead, remove that one, "
                 "then open this one again.",
                 {AgentManager::bundleOf(*program)}),
       {translate("OK")}},
      [weak = weak_from_this()](int) {
        if (const auto self = weak.lock()) self->alert_.reset();
      });
}

void AppDelegate::beginLoginItemsRecovery() {
  if (recoveryAlertVisible()) return;
  awaitingLoginItemsFix_ = true;
  switchSeenOff_ = needsApproval();
  const RecoveryWords words = platform().wording.recovery(switchSeenOff_);
  const bool leadsThere = !words.button.empty();
  Alert alert{AlertStyle::warning, words.title, words.text, {translate("OK")}};
  if (leadsThere) alert.buttons = {words.button, translate("Not Now")};
  recoveryAlert_ = platform().alerts.show(alert, [weak = weak_from_this(), leadsThere](int button) {
    if (const auto self = weak.lock()) self->recoveryAnswered(leadsThere && button == 0);
  });
}

void AppDelegate::recoveryAnswered(bool opens) {
  recoveryAlert_.reset();
  if (!opens || platform().loginItems.openSettings()) return;
  recoveryAlert_ = platform().alerts.show(
      {AlertStyle::informational, translate("Switch Dormel on"), platform().loginItems.advice(), {translate("OK")}},
      [weak = weak_from_this()](int) {
        if (const auto self = weak.lock()) self->recoveryAlert_.reset();
      });
}

void AppDelegate::didBecomeActive() {
  if (mode_ != Mode::window) return;
  const bool isLaunch = !std::exchange(hasBeenActive_, true);
  if (!awaitingLoginItemsFix_ || needsApproval()) return;
  // The launch's own activation follows the alert about a job that could not be loaded: nobody has been anywhere yet.
  if (isLaunch && !switchSeenOff_) return;
  awaitingLoginItemsFix_ = false;
  recoveryAlert_.reset();
  if (!AgentManager::isLoaded()) AgentManager::rearm();
  trace("self-heal: Login Items switched back on — agent re-armed");
}

void AppDelegate::finishOnboarding() {
  platform().defaults.set(defaultsKey::onboardingComplete, {true});
  Config::seedClockFormatFromSystem();
  showSettings();
  if (AgentManager::rearm()) {
    print("Onboarding complete — scheduler armed (lock " + std::to_string(Config::startHour()) + ":00 → " +
          std::to_string(Config::endHour()) + ":00).");
    return sayWhoLocks();
  }
  print("Onboarding complete but the scheduler could NOT be armed.");
  beginLoginItemsRecovery();
}

void AppDelegate::showSettings() {
  present(platform().mainWindows.make({SETTINGS_SIZE, "Dormel"},
                                      SettingsView::create(platform().updater, settingsHooks()),
                                      [] { platform().application.terminate(); }));
}

void AppDelegate::showNights() {
  if (const auto nights = nights_.lock()) {
    nights->refresh();
  } else {
    const std::shared_ptr<NightsView> view = NightsView::create();
    nights_ = view;
    nightsWindow_ = platform().mainWindows.make({NightsView::SIZE, translate("Your nights"), false}, view,
                                                [weak = weak_from_this()] {
                                                  if (const auto self = weak.lock()) self->nightsWindow_.reset();
                                                });
  }
  nightsWindow_->bringToFront();
}

void AppDelegate::showOnboarding() {
  presentOnboarding(OnboardingView::create(onboardingHooks([](AppDelegate& self) { self.finishOnboarding(); })));
}

void AppDelegate::showOnboardingPreview() {
  presentOnboarding(OnboardingView::createPreview(onboardingHooks([](AppDelegate& self) { self.showSettings(); })));
}

OnboardingView::Hooks AppDelegate::onboardingHooks(void (*finish)(AppDelegate&)) {
  const auto weak = weak_from_this();
  return {[weak](std::function<void()> onEnd) {
            const auto self = weak.lock();
            return self && self->runDemo(std::move(onEnd));
          },
          [weak, finish] {
            if (const auto self = weak.lock()) finish(*self);
          }};
}

void AppDelegate::presentOnboarding(std::shared_ptr<OnboardingView> view) {
  present(platform().mainWindows.make({OnboardingView::SIZE, "Dormel"}, std::move(view),
                                      [] { platform().application.terminate(); }));
}

SettingsView::Hooks AppDelegate::settingsHooks() {
  const auto weakly = [weak = weak_from_this()](void (AppDelegate::*operation)()) {
    return [weak, operation] {
      if (const auto self = weak.lock()) (self.get()->*operation)();
    };
  };
  return {weakly(&AppDelegate::testNow),
          weakly(&AppDelegate::showOnboardingPreview),
          weakly(&AppDelegate::confirmUninstall),
          AgentManager::rearm,
          weakly(&AppDelegate::beginLoginItemsRecovery),
          weakly(&AppDelegate::handleReopen),
          weakly(&AppDelegate::showNights)};
}

void AppDelegate::ask(const Alert& alert, void (AppDelegate::*onAnswer)(int)) {
  alert_ = platform().alerts.show(alert, [weak = weak_from_this(), onAnswer](int button) {
    const auto self = weak.lock();
    if (!self) return;
    self->alert_.reset();
    (self.get()->*onAnswer)(button);
  });
}

void AppDelegate::present(std::unique_ptr<MainWindow> window) {
  const std::unique_ptr<MainWindow> before = std::exchange(mainWindow_, std::move(window));
  mainWindow_->bringToFront();
  platform().application.activateIgnoringOthers();
  if (before) before->close();
}

void AppDelegate::handleReopen() {
  if (mode_ != Mode::window || !mainWindow_) return;
  mainWindow_->bringToFront();
  platform().application.activateIgnoringOthers();
}

void AppDelegate::testNow() {
  if (screenManager_) screenManager_->startTest(isTrusted(), [] {});
}

bool AppDelegate::runDemo(std::function<void()> onEnd) {
  return screenManager_ && screenManager_->startOnboardingDemo(std::move(onEnd));
}

void AppDelegate::openAccessibilitySettings() { platform().workspace.open(ACCESSIBILITY_PAGE); }

bool AppDelegate::shouldTerminate() {
  if (mode_ == Mode::window || !screenManager_ || screenManager_->state() == SessionState::idle) return true;
  print("Terminate blocked — still in blocking hours.");
  return false;
}

void AppDelegate::willTerminate() {
  if (screenManager_) screenManager_->deactivate();
}

}  // namespace dormel
