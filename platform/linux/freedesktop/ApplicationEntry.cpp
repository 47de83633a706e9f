#include "platform/linux/freedesktop/ApplicationEntry.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

#include "platform/Texts.h"
#include "platform/common/Catalog.h"
#include "platform/linux/freedesktop/AppBundle.h"
#include "platform/linux/freedesktop/AutostartEntry.h"
#include "platform/linux/freedesktop/BaseDirectories.h"
#include "platform/linux/freedesktop/TextFile.h"

namespace dormel::freedesktop {
namespace {

struct Key {
  const char* name;
  const char* english;
};
constexpr Key TEXTS[] = {{"GenericName", translatable("Bedtime Lock")},
                         {"Comment", translatable("Locks this computer at the hour you chose, until morning")},
                         {"Keywords", translatable("bedtime;sleep;night;lock;")}};

/// These keys in English and in every language that the bundle has: the menus choose among them.
std::string textsOf(const std::string& bundle) {
  namespace fs = std::filesystem;
  std::string lines;
  for (const Key& key : TEXTS) lines += std::string(key.name) + "=" + key.english + "\n";
  std::vector<fs::path> tables;
  std::error_code error;
  for (const auto& file : fs::directory_iterator(bundle + "/Contents/Resources/texts", error)) {
    if (file.path().extension() == ".mo") tables.push_back(file.path());
  }
  std::sort(tables.begin(), tables.end());
  for (const fs::path& table : tables) {
    const auto bytes = readTextFile(table.string());
    const auto catalog = bytes ? Catalog::parse(*bytes) : std::nullopt;
    if (!catalog) continue;
    for (const Key& key : TEXTS) {
      const std::string* const text = catalog->find(key.english);
      if (text != nullptr) lines += std::string(key.name) + "[" + table.stem().string() + "]=" + *text + "\n";
    }
  }
  return lines;
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
      desktopEntryString(bundleInfo(bundle, "CFBundleName").value_or("Dormel")) + "\n" + textsOf(bundle) +
      "Exec=" + desktopEntryExec({program}) +
      "\n"
      "TryExec=" +
      desktopEntryString(program) +
      "\n"
      "Icon=" +
      identifier_ +
      "\n"
      "Terminal=false\n"
      "Categories=Utility;\n"
      "StartupWMClass=" +
      identifier_ +
      "\n"
      "SingleMainWindow=true\n";
  bool changed = false;
  if (const auto icon = readTextFile(bundle + "/Contents/Resources/dormel.svg")) {
    if (auto error = updateTextFile(iconPath_, *icon, changed)) return error;
    // Desktops look for new icons where the folder of the theme has changed.
    if (changed) ::utimensat(AT_FDCWD, theme_.c_str(), nullptr, 0);
  }
  return updateTextFile(path_, text, changed);
}

void ApplicationEntry::remove() const {
  for (const std::string& file : {path_, iconPath_}) ::unlink(file.c_str());
}

}  // namespace dormel::freedesktop
