#include "platform/linux/freedesktop/ApplicationEntry.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/freedesktop/AppBundle.h"
#include "platform/linux/freedesktop/AutostartEntry.h"
#include "platform/linux/freedesktop/BaseDirectories.h"
#include "platform/linux/freedesktop/TextFile.h"

namespace dormel::freedesktop {
namespace {

/// Sets `changed` when the file did not say so already.
FileResult update(const std::string& path, std::string_view text, bool& changed) {
  if (readTextFile(path) == text) return {};
  changed = true;
  return replaceTextFile(path, text);
}

}  // namespace

ApplicationEntry::ApplicationEntry(std::string_view identifier)
    : identifier_(identifier),
      path_(dataHome() + "/applications/" + identifier_ + ".desktop"),
      theme_(dataHome() + "/icons/hicolor"),
      iconPath_(theme_ + "/scalable/apps/" + identifier_ + ".svg") {}

FileResult ApplicationEntry::write(const std::string& bundle) const {
  const std::string program = bundleExecutable(bundle);
  const std::string text =
      "[Desktop Entry]\n"
      "Type=Application\n"
      "Version=1.5\n"
      "Name=" +
      desktopEntryString(bundleInfo(bundle, "CFBundleName").value_or("Dormel")) +
      "\n"
      "GenericName=Bedtime Lock\n"
      "Comment=Locks this computer at the hour you chose, until morning\n"
      "Exec=" +
      desktopEntryExec({program}) +
      "\n"
      "TryExec=" +
      desktopEntryString(program) +
      "\n"
      "Icon=" +
      identifier_ +
      "\n"
      "Terminal=false\n"
      "Categories=Utility;\n"
      "Keywords=bedtime;sleep;night;lock;\n"
      "StartupWMClass=" +
      identifier_ +
      "\n"
      "SingleMainWindow=true\n";
  bool changed = false;
  if (const auto icon = readTextFile(bundle + "/Contents/Resources/dormel.svg")) {
    if (auto error = update(iconPath_, *icon, changed)) return error;
    // Desktops look for new icons where the folder of the theme has changed.
    if (changed) ::utimensat(AT_FDCWD, theme_.c_str(), nullptr, 0);
  }
  return update(path_, text, changed);
}

void ApplicationEntry::remove() const {
  for (const std::string& file : {path_, iconPath_}) ::unlink(file.c_str());
}

}  // namespace dormel::freedesktop
