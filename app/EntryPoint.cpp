#include "app/EntryPoint.h"

#include <algorithm>
#include <iterator>

#include "app/AgentManager.h"
#include "app/AppInstaller.h"
#include "app/CommandLine.h"
#include "core/Config.h"
#include "engine/NightReport.h"
#include "platform/Accessibility.h"
#include "platform/Bundle.h"
#include "platform/Defaults.h"
#include "platform/Files.h"
#include "platform/Platform.h"
#include "platform/Process.h"
#include "platform/Texts.h"
#include "platform/Workspace.h"

namespace dormel::EntryPoint {
namespace {

bool has(const char* argument) { return std::find(cliArgs.begin(), cliArgs.end(), argument) != cliArgs.end(); }

void print(std::string_view line) { platform().output.print(line); }

void version() {
  const Bundle& bundle = platform().bundle;
  print("Dormel " + bundle.info("CFBundleShortVersionString").value_or(DORMEL_VERSION) + " (" +
        bundle.info("CFBundleVersion").value_or("0") + ")");
  platform().process.exit(0);
}

void help() {
  print(
      translate("Dormel locks this computer at the hour you chose, until morning.\n"
                "\n"
                "Usage: Dormel [option]\n"
                "  --setup      arm the lock: every night at the stored hour\n"
                "  --uninstall  disarm it\n"
                "  --check-ax   say whether the keyboard can be taken here\n"
                "  --nights     show the last ninety nights; --nights=json: for scripts\n"
                "  --scheduled  what the scheduler starts: lock now, if it is time\n"
                "  --version    print the version\n"
                "  --help       print this\n"
                "\n"
                "While it is locked, hold the five keys shown for 30 seconds to get five minutes."));
  platform().process.exit(0);
}

void setOnboardingComplete(bool complete) {
  platform().defaults.set(defaultsKey::onboardingComplete, {complete});
  platform().defaults.synchronize();
}

void setup() {
  setOnboardingComplete(true);
  const bool installed = AgentManager::install();
  AppInstaller::listInMenus();
  print(installed ? "Setup complete — agent installed." : "Setup FAILED — agent not installed.");
  if (!AppInstaller::isInItsPlace()) {
    platform().output.printError("Dormel: " +
                                 translate("This copy will not lock: it is not in your Applications folder. "
                                           "Open it once, and it offers to move itself."));
  }
  platform().process.exit(installed ? 0 : 1);
}

void uninstall() {
  AgentManager::uninstall();
  setOnboardingComplete(false);
  print("Agent uninstalled, onboarding reset.");
  platform().process.exit(0);
}

void checkAccessibility() {
  const bool trusted = platform().accessibility.isProcessTrusted();
  Config::ensureLogDirectory();
  platform().files.writeAtomically(
      Config::logDirectory() + "/ax-probe.txt",
      std::string(trusted ? "TRUSTED" : "not trusted") + " " + platform().bundle.path() + "\n");
  print(trusted ? "AX: TRUSTED" : "AX: not trusted");
  platform().process.exit(trusted ? 0 : 1);
}

NightHistory history() {
  NightHistory read = NightHistory::read(platform().clock.now());
  if (read.damaged) platform().output.printError("Dormel: " + translate(NightReport::DAMAGED));
  return read;
}

void nights() {
  print(NightReport::text(history(), platform().output.terminal(), Config::use24HourClock()));
  platform().process.exit(0);
}

void nightsAsJson() {
  print(NightReport::json(history()));
  platform().process.exit(0);
}

struct Command {
  const char* argument;
  void (*run)();  // ends the process
};
constexpr Command COMMANDS[] = {{"--version", version},
                                {"--help", help},
                                {"--setup", setup},
                                {"--uninstall", uninstall},
                                {"--check-ax", checkAccessibility},
                                {"--nights", nights},
                                {"--nights=json", nightsAsJson}};

}  // namespace

void runOneShotCommand() {
  for (const Command& command : COMMANDS) {
    if (has(command.argument)) command.run();
  }
}

bool isOneShotCommand() {
  return std::any_of(std::begin(COMMANDS), std::end(COMMANDS), [](const Command& c) { return has(c.argument); });
}

bool opensWindow() { return !has("--scheduled") && !isOneShotCommand(); }

std::shared_ptr<AppDelegate> startApplication() {
  platform().process.onTerminationSignal([] {
    platform().output.print("SIGTERM caught — respawning via non-zero exit.");
    platform().process.exit(1);
  });
  return AppDelegate::create();
}

}  // namespace dormel::EntryPoint
