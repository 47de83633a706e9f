// The desktop entry that starts a job when its user logs in, ~/.config/autostart/<label>.desktop. It is also the
// user's switch for that job: desktops show these entries in their settings and switch them off by a key in the
// file, which we never overrule.
//
// Reads the disk on every call; any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/Files.h"

namespace dormel::freedesktop {

class AutostartEntry {
 public:
  enum class Switch {
    absent,  ///< there is no entry, or it cannot be read
    on,
    off,  ///< switched off by the user
  };

  struct Content {
    std::string name;                  ///< what the desktop's settings call it
    std::vector<std::string> command;  ///< program (absolute) and arguments
  };

  explicit AutostartEntry(std::string_view label);

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] Switch state() const;

  /// Creates or replaces the entry. Not for one that the user has switched off.
  FileResult write(const Content& content) const;
  /// True when there was an entry and it is gone now. One that the user has switched off stays, so that the
  /// switch is remembered.
  [[nodiscard]] bool removeUnlessSwitchedOff() const;

 private:
  std::string path_;
};

/// What an entry of this text says. Never `absent`.
[[nodiscard]] AutostartEntry::Switch switchInDesktopEntry(std::string_view text);

/// `text` as the value of a string key.
[[nodiscard]] std::string desktopEntryString(std::string_view text);
/// `command` as the value of the key Exec: each argument arrives whole, whatever characters it holds.
[[nodiscard]] std::string desktopEntryExec(const std::vector<std::string>& command);

}  // namespace dormel::freedesktop
