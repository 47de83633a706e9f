// Programs that are found by their name.
#pragma once

#include <optional>
#include <string>

namespace dormel::freedesktop {

/// The absolute path of the first executable file of that name in the folders of PATH; nothing when there is none.
[[nodiscard]] std::optional<std::string> findProgram(const std::string& name);

}  // namespace dormel::freedesktop
