// Small files that other programs read: whole reads, and replacing in one step.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Files.h"

namespace dormel::freedesktop {

/// The whole content; nothing when it cannot be read.
[[nodiscard]] std::optional<std::string> readTextFile(const std::string& path);

/// Puts `text` at `path`, creating missing folders: a reader, and a machine that loses its power, sees the old
/// content or the new one.
FileResult replaceTextFile(const std::string& path, std::string_view text);

/// The same, unless it says so already; sets `changed` when it did not.
FileResult updateTextFile(const std::string& path, std::string_view text, bool& changed);

/// Creates the folder with all missing ones above it, less the process's umask, and takes note of each, so that an
/// uninstall finds them.
FileResult createFolders(const std::string& path, unsigned mode = 0777);

}  // namespace dormel::freedesktop
