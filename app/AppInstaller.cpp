#include "app/AppInstaller.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "app/AgentManager.h"
#include "core/Config.h"
#include "platform/Alerts.h"
#include "platform/Application.h"
#include "platform/Bundle.h"
#include "platform/Files.h"
#include "platform/Platform.h"
#include "platform/Process.h"
#include "platform/PropertyList.h"
#include "platform/RunLoop.h"
#include "platform/Texts.h"
#include "platform/Workspace.h"

namespace dormel::AppInstaller {
namespace {

// A background-only application cannot bring an alert to the front; it becomes a regular one first, and the desktop
// takes a moment to notice.
constexpr Seconds BECOME_REGULAR = 0.3;
constexpr Seconds BECOME_ACTIVE = 0.1;

std::string bundlePath() { return platform().bundle.path(); }

std::string lastComponent(const std::string& path) { return path.substr(path.find_last_of('/') + 1); }

std::string parent(const std::string& path) { return path.substr(0, path.find_last_of('/')); }

void exitWith(int status) { platform().process.exit(status); }

/// Shows an alert that lives until it is answered.
void ask(const Alert& alert, std::function<void(int)> onAnswer) {
  auto shown = std::make_shared<std::unique_ptr<ShownAlert>>();
  *shown = platform().alerts.show(alert, [shown, onAnswer = std::move(onAnswer)](int button) {
    const std::unique_ptr<ShownAlert> answered = std::move(*shown);
    onAnswer(button);
  });
}

void failInstallation(const std::string& reason) {
  ask({AlertStyle::critical, translate("Installation Error"), reason, {translate("OK")}}, [](int) { exitWith(1); });
}

void failMove(const std::string& reason) {
  failInstallation(translate("Could not move Dormel to Applications: %1", {reason}));
}

bool isAppRunning(const std::string& bundle) {
  Workspace& workspace = platform().workspace;
  const std::string wanted = workspace.standardized(bundle);
  const auto running = workspace.runningBundles();
  return std::any_of(running.begin(), running.end(),
                     [&](const std::string& path) { return workspace.standardized(path) == wanted; });
}

bool isInApplicationsFolder(const std::string& bundle) {
  Workspace& workspace = platform().workspace;
  const std::string folder = workspace.standardized(parent(bundle));
  const auto folders = workspace.applicationsDirectories();
  return std::any_of(folders.begin(), folders.end(),
                     [&](const std::string& candidate) { return workspace.standardized(candidate) == folder; });
}

/// The file of this bundle at `own`, in the copy at `bundle`.
std::string inCopy(const std::string& bundle, const std::string& own) {
  return own.starts_with(bundlePath() + "/") ? bundle + own.substr(bundlePath().size()) : own;
}

/// The error's own words, or nothing when it went well.
std::optional<std::string> runAuthorized(const std::string& command) {
  const auto error = platform().workspace.runAsAdministrator(command);
  if (!error) return {};
  return error->message.value_or(translate("Install failed"));
}

void stripQuarantine(const std::string& path) {
  platform().childProcesses.run("/usr/bin/xattr", {"-d", "-r", "com.apple.quarantine", path});
}

/// Replaces what stands at `destination` by the running bundle; what went wrong, if anything.
std::optional<std::string> copyBundle(const std::string& folder, const std::string& destination) {
  Workspace& workspace = platform().workspace;
  if (workspace.isSameFile(bundlePath(), destination)) return {};  // another way to where it belongs
  const bool occupied = platform().files.exists(destination);
  if (!workspace.isWritable(folder) || (occupied && !workspace.isWritable(destination))) {
    return runAuthorized(replaceCommand(bundlePath(), destination));
  }
  if (const auto error = workspace.putCopy(bundlePath(), destination)) return error->message;
  return {};
}

void move() {
  const auto folder = platform().workspace.localApplicationsDirectory();
  if (!folder) {
    failInstallation(translate("Could not find the Applications folder."));
    return;
  }
  const std::string destination = *folder + "/" + lastComponent(bundlePath());
  if (platform().files.exists(destination) && isAppRunning(destination)) {
    platform().workspace.open(destination);
    exitWith(0);
    return;
  }
  if (const auto reason = copyBundle(*folder, destination)) {
    failMove(*reason);
    return;
  }
  stripQuarantine(destination);
  // The job must name the copy that stays: this one is about to be thrown away by its user, and a scheduled start of
  // it would end at once because it is in the wrong place.
  // Another copy that locks goes on doing so.
  if (Config::onboardingComplete()) {
    AgentManager::install(AgentManager::otherCopy().value_or(inCopy(destination, AgentManager::executablePath())));
  }
  relaunch(destination);
}

/// Whoever renames the folder takes from it what makes it a bundle. What would be moved then is a folder inside it.
void refuse() {
  failInstallation(
      translate("Dormel's folder needs a name that ends in \".app\". Rename it to \"Dormel.app\" and open it again."));
}

void offerToMove() {
  const std::string why =
      isRunningFromDMG() ? translate(
                               "Dormel is running from a disk image. It needs to be in your Applications folder to "
                               "work properly.\n\nAfter moving, you can eject the disk image.")
                         : translate("Dormel needs to be in your Applications folder to work properly.");
  ask({AlertStyle::informational,
       translate("Move Dormel to Applications"),
       why,
       {translate("Move to Applications"), translate("Quit")}},
      [](int button) {
        if (button != 0) {
          exitWith(0);
          return;
        }
        move();
      });
}

}  // namespace

std::string replaceCommand(const std::string& from, const std::string& to) {
  // The copy is whole and on the disk before anything is touched, and may be changed by its owner, which a disk image
  // lets nobody.
  constexpr const char* SCRIPT =
      "t=$(mktemp -d \"${2%/*}/.${2##*/}.XXXXXX\") || exit; "
      "cp -pR \"$1\" \"$t/new\" && chmod -R u+w \"$t/new\" && sync -f \"$t\" && "
      "{ [ ! -e \"$2\" ] || mv -T \"$2\" \"$t/old\"; } && "
      "{ mv -T \"$t/new\" \"$2\" || { mv -T \"$t/old\" \"$2\"; false; }; }; "
      "s=$?; chmod -R u+w \"$t\"; [ -e \"$t/old\" ] && [ ! -e \"$2\" ] || rm -rf \"$t\"; exit $s";
  return "sh -c " + shellQuoted(SCRIPT) + " sh " + shellQuoted(from) + " " + shellQuoted(to);
}

void relaunch(const std::string& path) {
  // Where the platform brings the tool along, the new copy's: the old one may be gone with its disk by then.
  constexpr const char* OPEN = "/usr/bin/open";
  const std::string file = inCopy(path, platform().childProcesses.toolPath(OPEN));
  const std::string tool = file == OPEN ? file : shellQuoted(file);
  const std::string text = "(while /bin/kill -0 " + std::to_string(platform().process.processId()) +
                           " >/dev/null 2>&1; do /bin/sleep 0.1; done; " + tool + " " + shellQuoted(path) + ") &";
  platform().childProcesses.start("/bin/sh", {"-c", text});
  exitWith(0);
}

bool moveToApplicationsFolderIfNeeded(bool isScheduled) {
  if (isInItsPlace()) return true;
  if (isScheduled) {
    platform().output.print("ERROR: Dormel launched --scheduled from " + bundlePath() + ", not /Applications.");
    exitWith(0);
    return false;
  }
  platform().application.setActivationPolicy(ActivationPolicy::regular);
  platform().runLoop.asyncAfter(BECOME_REGULAR, [] {
    platform().application.activateIgnoringOthers();
    platform().runLoop.asyncAfter(BECOME_ACTIVE, platform().bundle.executablePath() ? offerToMove : refuse);
  });
  return false;
}

bool isInApplicationsFolder() { return isInApplicationsFolder(bundlePath()); }

bool isInItsPlace() { return platform().bundle.isPackaged() || isInApplicationsFolder(); }

bool mayLock(const std::string& bundle) {
  if (isInApplicationsFolder(bundle)) return true;
  const auto xml = platform().files.read(bundle + "/Contents/Info.plist");
  const auto info = xml ? readXmlPropertyList(*xml) : std::nullopt;
  const auto* entries = info ? info->as<PropertyListDictionary>() : nullptr;
  if (entries == nullptr || !entries->contains("DormelPackagePlace")) return false;
  const auto* place = entries->at("DormelPackagePlace").as<std::string>();
  return place != nullptr && *place == bundle;
}

bool isRunningFromDMG() { return platform().workspace.isOnReadOnlyImage(bundlePath()); }

void listInMenus() {
  if (platform().bundle.isPackaged() || !isInApplicationsFolder()) return;
  platform().workspace.registerApplication(platform().bundle.path());
}

std::string shellQuoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'') {
      quoted += "'\\''";
    } else {
      quoted += c;
    }
  }
  return quoted + "'";
}

}  // namespace dormel::AppInstaller
