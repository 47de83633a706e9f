// An application bundle on disk: "<Name>.app/Contents/{Info.plist,Linux/<executable>,Resources/}". Any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace dormel::freedesktop {

/// Whether the path names a bundle that exists.
[[nodiscard]] bool isBundle(const std::string& path);
/// What its information property list says under `key`; nothing when it says nothing.
[[nodiscard]] std::optional<std::string> bundleInfo(const std::string& bundle, const std::string& key);
/// The path of the program inside, whether or not it can be run.
[[nodiscard]] std::string bundleExecutable(const std::string& bundle);
/// The bundle that an executable's path lies in; nothing when that is no bundle's own program.
[[nodiscard]] std::optional<std::string> bundleOfExecutable(std::string_view executable);

}  // namespace dormel::freedesktop
