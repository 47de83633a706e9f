// Removing everything the program put on the machine.
#include <string>

#include "app/AgentManager.h"
#include "app/AppDelegate.h"
#include "app/AppInstaller.h"
#include "core/AppSupport.h"
#include "core/Config.h"
#include "core/DebugLog.h"
#include "platform/Bundle.h"
#include "platform/Defaults.h"
#include "platform/Files.h"
#include "platform/Platform.h"
#include "platform/Process.h"
#include "platform/Texts.h"
#include "platform/Updater.h"
#include "platform/Wording.h"
#include "platform/Workspace.h"

namespace dormel {
namespace {

constexpr const char* QUESTION = translatable(
    "This removes Dormel from this computer completely: the nightly lock, the application, and everything it saved, "
    "settings and records included.");
constexpr const char* QUESTION_PACKAGED = translatable(
    "This removes the nightly lock and everything that Dormel saved for you, settings and records included. The "
    "application itself stays: it belongs to your system, which removes it.");

void removeBundle() {
  if (platform().bundle.isPackaged()) return;
  const std::string path = platform().bundle.path();
  if (platform().workspace.isDeletable(path)) {
    platform().files.remove(path);
    return;
  }
  // A refused password leaves the bundle; everything else is gone already.
  static_cast<void>(platform().workspace.runAsAdministrator("rm -rf " + AppInstaller::shellQuoted(path)));
}

}  // namespace

void AppDelegate::confirmUninstall() {
  ask({AlertStyle::warning,
       translate("Uninstall Dormel?"),
       translate(platform().bundle.isPackaged() ? QUESTION_PACKAGED : QUESTION),
       {translate("Uninstall"), translate("Cancel")}},
      &AppDelegate::uninstallAnswered);
}

void AppDelegate::uninstallAnswered(int button) {
  if (button != 0) return;
  // Looked at only now: the hours may have begun while the question stood.
  if (Config::blockingEnabled() && Config::isBlockingNow(platform().clock.now())) return;
  // From here on nothing may bring back what is being removed: not the log, and not the return from the settings.
  DebugLog::shared().setEnabled(false);
  awaitingLoginItemsFix_ = false;
  recoveryAlert_.reset();
  AgentManager::uninstall();
  platform().defaults.removeDomain();
  platform().defaults.synchronize();
  platform().files.remove(AppSupport::directory());
  platform().files.remove(Config::logDirectory());
  removeBundle();
  // Only now: a download that another window began keeps nothing for a bundle that is gone.
  platform().updater.forget();
  platform().workspace.forgetApplication();
  const auto removal = platform().bundle.packageRemoval();
  const std::string done =
      removal ? translate(
                    "The nightly lock and everything that Dormel saved for you have been removed.\n\nTo remove the "
                    "application, too, type in a terminal: %1",
                    {*removal})
              : translate("Dormel has been removed from your %1.", {platform().wording.computer()});
  ask({AlertStyle::informational, translate("Dormel uninstalled"), done, {translate("OK")}},
      &AppDelegate::uninstallDone);
}

void AppDelegate::uninstallDone(int /*button*/) { platform().process.exit(0); }

}  // namespace dormel
