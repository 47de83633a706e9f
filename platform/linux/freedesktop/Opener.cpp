#include "platform/linux/freedesktop/Opener.h"

#include <string_view>

#include "platform/Process.h"
#include "platform/linux/freedesktop/AppBundle.h"
#include "platform/linux/freedesktop/Programs.h"
#include "platform/linux/posix/Environment.h"

namespace dormel::freedesktop {
namespace {

std::string currentDesktop() { return posix::environmentVariable("XDG_CURRENT_DESKTOP"); }

}  // namespace

bool isGnome() { return namesDesktop(currentDesktop(), "GNOME"); }

bool Opener::report(const std::string& what) const {
  output_.printError("Dormel: cannot open " + what);
  return false;
}

bool Opener::open(const std::string& pathOrAddress) const {
  if (isSettingsAddress(pathOrAddress)) {
    const auto page = settingsPageAt(pathOrAddress);
    return page ? openSettings(*page) : report("the settings: nothing is known of " + pathOrAddress);
  }
  if (isBundle(pathOrAddress)) {
    return children_.start(bundleExecutable(pathOrAddress), {}) || report(pathOrAddress + ": its program cannot run");
  }
  const auto tool = findProgram("xdg-open");
  if (!tool) return report(pathOrAddress + ": there is no xdg-open");
  return children_.start(*tool, {pathOrAddress}) || report(pathOrAddress);
}

bool Opener::openSettings(SettingsPage page) const {
  const std::string desktop = currentDesktop();
  for (const auto& command : settingsCommands(page, desktop)) {
    const auto program = findProgram(command.front());
    if (program && children_.start(*program, {command.begin() + 1, command.end()})) return true;
  }
  const std::string name = desktop.empty() ? "no desktop that we know" : desktop;
  return report("the settings: " + name + " has no such page here");
}

std::string Opener::autostartPage() const {
  for (const AutostartPage& page : autostartPages(currentDesktop())) {
    if (findProgram(page.command.front())) return page.name;
  }
  return {};
}

}  // namespace dormel::freedesktop
