// Opening things the way the desktop does. Main thread; returns at once, what was opened lives on by itself.
#pragma once

#include <string>

#include "platform/linux/freedesktop/SettingsPages.h"

namespace dormel {
class ChildProcesses;
class StandardOutput;
}  // namespace dormel

namespace dormel::freedesktop {

/// Whether this session is GNOME, or a desktop that is built on it.
[[nodiscard]] bool isGnome();

class Opener {
 public:
  /// Both outlive this object. What cannot be opened is said once in a line on `output`.
  Opener(ChildProcesses& children, StandardOutput& output) : children_(children), output_(output) {}

  /// A bundle: its program is started. An address of a settings page ("x-apple.systempreferences:…"): the page of
  /// this desktop that has the matter. Any other address, a file or a folder: what the user chose for its kind.
  /// False when there is nothing that could open it.
  [[nodiscard]] bool open(const std::string& pathOrAddress) const;

  [[nodiscard]] bool openSettings(SettingsPage page) const;
  /// What the page of what starts at login is called; empty where there is none to open.
  [[nodiscard]] std::string autostartPage() const;

 private:
  bool report(const std::string& what) const;

  ChildProcesses& children_;
  StandardOutput& output_;
};

}  // namespace dormel::freedesktop
