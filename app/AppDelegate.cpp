#include "app/AppDelegate.h"

#include <algorithm>
#include <string>

#include "app/CommandLine.h"
#include "platform/Accessibility.h"
#include "platform/Platform.h"
#include "platform/Process.h"

namespace dormel {

std::shared_ptr<AppDelegate> AppDelegate::create() { return std::shared_ptr<AppDelegate>(new AppDelegate); }

void AppDelegate::didFinishLaunching() {
  const bool scheduled = std::find(cliArgs.begin(), cliArgs.end(), "--scheduled") != cliArgs.end();
  if (scheduled) {
    startScheduledBlock();
  } else {
    startWindowMode();
  }
}

void AppDelegate::startScheduledBlock() {
  mode_ = Mode::scheduled;
  if (!platform().process.claimSession()) {
    platform().output.print("Dormel is already watching this night in another process. Exiting.");
    platform().process.exit(0);
  }
  platform().application.setActivationPolicy(ActivationPolicy::accessory);
  platform().application.activateIgnoringOthers();
  const bool trusted = platform().accessibility.isProcessTrusted();
  if (trusted) {
    platform().output.print("Accessibility permission OK.");
  } else {
    platform().output.print("WARNING: Accessibility not granted — Dormel will NOT lock the screen tonight (P2.2r).");
    platform().output.print("To fix: System Settings → Privacy & Security → Accessibility → add/enable Dormel");
  }
  screenManager_ = ScreenManager::create();
  screenManager_->activate(trusted);
}

void AppDelegate::startWindowMode() {
  mode_ = Mode::window;
  for (std::size_t i = 1; i < cliArgs.size(); ++i) {
    platform().output.printError("Dormel: unknown argument " + cliArgs[i] + "; see --help");
  }
  // There is no window to show yet. Saying so beats pretending.
  platform().output.printError("Dormel: there is no settings window yet; arm the lock with --setup, see --help");
  platform().process.exit(1);
}

bool AppDelegate::shouldTerminate() {
  if (mode_ == Mode::window || !screenManager_ || screenManager_->state() == SessionState::idle) return true;
  platform().output.print("Terminate blocked — still in blocking hours.");
  return false;
}

void AppDelegate::willTerminate() {
  if (screenManager_) screenManager_->deactivate();
}

}  // namespace dormel
