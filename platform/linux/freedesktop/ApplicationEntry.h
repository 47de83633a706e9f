// The program's place in the desktop's menus: a desktop entry and the icon it names. Any thread.
#pragma once

#include <string>
#include <string_view>

#include "platform/Files.h"

namespace dormel::freedesktop {

class ApplicationEntry {
 public:
  /// `identifier` names both files, and what windows call themselves to be found as this application's.
  explicit ApplicationEntry(std::string_view identifier);

  [[nodiscard]] const std::string& path() const { return path_; }

  /// Points the entry at this bundle, with the icon "dormel.svg" of its resources, in the languages of its texts.
  /// Touches nothing that says so already.
  [[nodiscard]] FileResult write(const std::string& bundle) const;
  void remove() const;

 private:
  std::string identifier_;
  std::string path_;
  std::string theme_;
  std::string iconPath_;
};

}  // namespace dormel::freedesktop
